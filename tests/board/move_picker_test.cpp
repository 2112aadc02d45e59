// tests/board/move_picker_test.cpp - the order in which moves are searched. Node counts depend on
// it to the last swap.
#include "board/move_picker.h"

#include <algorithm>
#include <map>
#include <memory>

#include "board/capture_picker.h"
#include "board/piece_square_table.h"
#include "support.h"

namespace vatro {
namespace {

/// The order that repeated selection gives: each strictly better move met changes places with the
/// best so far.
std::vector<Move> selectionOrder(MoveList list) {
    std::vector<Move> order;
    for (unsigned i = 0; i < list.count; ++i) {
        for (unsigned j = i + 1; j < list.count; ++j) {
            if (list.moves[j].score() > list.moves[i].score())
                std::swap(list.moves[i], list.moves[j]);
        }
        order.push_back(list.moves[i].move());
    }
    return order;
}

template <Colour Us>
std::vector<Move> pickAll(MovePicker& picker) {
    std::vector<Move> picked;
    while (const Move move = picker.next<Us>()) {
        picked.push_back(move);
    }
    return picked;
}

std::vector<Move> pickAll(const Board_0x88& board,
                          Move first = NoMove,
                          Move second = NoMove,
                          RefusedMoveListener* listener = nullptr) {
    MovePicker picker(board, computePins(board));
    picker.prefer(first, second, listener);
    return board.sideToMove == White ? pickAll<White>(picker) : pickAll<Black>(picker);
}

MoveList scoredMoves(const Board_0x88& board) {
    MoveList list;
    const PinInfo info = computePins(board);
    board.sideToMove == White ? generateScoredMoves<White>(board, info, KillerSet(board), list)
                              : generateScoredMoves<Black>(board, info, KillerSet(board), list);
    return list;
}

MoveList scoredCaptures(const Board_0x88& board) {
    MoveList list;
    const PinInfo info = computePins(board);
    const SquareMask everywhere = ~SquareMask{0};
    board.sideToMove == White ? generateCaptures<White>(board, info, everywhere, list)
                              : generateCaptures<Black>(board, info, everywhere, list);
    return list;
}

bool isBadCaptureHere(const Board_0x88& board, Move move, int& gain) {
    return board.sideToMove == White ? isBadCapture<White>(board, move, gain)
                                     : isBadCapture<Black>(board, move, gain);
}

constexpr int orderingValue[] = {0, 1, 2, 2, 3, 4, 5};  // by piece type

/// The score of a move for the search, move by move as it is defined.
int definedScore(const Board_0x88& board, Move move) {
    const PieceType mover = board.pieceAt(fromSquare(move));
    const PieceType victim = board.pieceAt(toSquare(move));
    int gain = 0;
    const int bonus = isBadCaptureHere(board, move, gain) ? -50 : 1000;
    if (typeOf(move) == EnPassant) return 64 - orderingValue[mover] + bonus;
    const int into = isPromotion(move) ? orderingValue[promotionPiece(move)] : 0;
    const int base = (into + 8 * orderingValue[victim]) * 8 - orderingValue[mover];
    if (victim != NoPiece || isPromotion(move)) return base + bonus;
    for (const unsigned ply : {board.ply, board.ply + 2}) {
        for (const Move killer : board.plyRecords[ply].killers) {
            if (((killer ^ move) & 0xFFF) == 0) return base + 150;
        }
    }
    return base + pieceSquareTable.at(board.toMove(), mover, to64(move)).middleGame() -
           pieceSquareTable.at(board.toMove(), mover, from64(move)).middleGame();
}

int definedCaptureScore(const Board_0x88& board, Move move) {
    const int mover = orderingValue[board.pieceOn[fromSquare(move)]];
    const int victim = orderingValue[board.pieceOn[toSquare(move)]];
    if (typeOf(move) == EnPassant) return 64 - mover;
    if (isPromotion(move)) return 8 * (8 * victim + orderingValue[promotionPiece(move)]) - mover;
    return 64 * victim - mover;
}

TEST(MoveScores, AreAsDefinedAndStandInGenerationOrder) {
    TestRandom random(8);
    const auto copy = std::make_unique<Board_0x88>();
    const auto check = [&](const Board_0x88& board) {
        MoveList plain;
        generateLegalMoves(board, plain);
        *copy = board;
        for (const unsigned ply : {board.ply, board.ply + 2}) {
            for (Move& killer : copy->plyRecords[ply].killers) {
                killer = plain.count ? plain.moves[random.below(plain.count)].move() : NoMove;
            }
        }
        const MoveList scored = scoredMoves(*copy);
        ASSERT_EQ(scored.count, plain.count) << board.toFEN();
        for (unsigned i = 0; i < plain.count; ++i) {
            const Move move = plain.moves[i].move();
            ASSERT_EQ(scored.moves[i].move(), move) << board.toFEN();
            ASSERT_EQ(scored.moves[i].score(), definedScore(*copy, move))
                << board.toFEN() << ' ' << moveToText(move);
        }
        for (const ScoredMove& entry : scoredCaptures(board)) {
            ASSERT_EQ(entry.score(), definedCaptureScore(board, entry.move())) << board.toFEN();
        }
    };
    for (const char* fen : richPositions) {
        for (int game = 0; game < 4; ++game) {
            forEachRandomPosition(fen, 100, random, check);
        }
    }
    for (const char* fen : oddPositions) {
        forEachRandomPosition(fen, 30, random, check);
    }
}

TEST(MovePicker, HandsOutPreferredMovesThenTheRestByScoreEachOnce) {
    TestRandom random(9);
    const auto check = [&](const Board_0x88& board) {
        const std::vector<Move> ordered = selectionOrder(scoredMoves(board));
        if (ordered.empty()) return;
        const Move first = random.below(3) ? ordered[random.below(ordered.size())] : NoMove;
        const Move second = random.below(3) ? ordered[random.below(ordered.size())] : NoMove;
        std::vector<Move> expected;
        if (first) expected.push_back(first);
        if (second && second != first) expected.push_back(second);
        for (const Move move : ordered) {
            if (move != first && move != second) expected.push_back(move);
        }
        ASSERT_EQ(pickAll(board, first, second), expected) << board.toFEN();
    };
    for (const char* fen : richPositions) {
        for (int game = 0; game < 4; ++game) {
            forEachRandomPosition(fen, 100, random, check);
        }
    }
    for (const char* fen : oddPositions)
        forEachRandomPosition(fen, 30, random, check);
    // With so many surplus pieces the whole list is generated at once.
    forEachRandomPosition("4k3/8/Q2Q2Q1/1Q2Q2Q/2Q5/R6R/B3N2Q/1B2K1NQ w - - 0 1", 30, random, check);
}

TEST(MovePicker, SortedListsStandAsSelectionHandsThemOut) {
    TestRandom random(21);
    for (int i = 0; i < 3000; ++i) {
        MoveList list;
        const unsigned size = random.below(i % 10 ? 50 : MoveList::Capacity + 1);
        const unsigned scores = 1 + random.below(30);
        for (unsigned move = 1; move <= size; ++move) {
            list.add(static_cast<Move>(move), static_cast<int>(random.below(scores)) - 10);
        }
        const std::vector<Move> expected = selectionOrder(list);
        sortAsSelected(list);
        std::vector<Move> sorted;
        for (const ScoredMove& entry : list)
            sorted.push_back(entry.move());
        ASSERT_EQ(sorted, expected) << size << ' ' << scores;
    }
}

// The search of the captures writes killers, which must not count for the moves after them.
TEST(MovePicker, KillersAreThoseOfTheFirstGeneratedMove) {
    const auto board =
        boardOf("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1");
    board->record().killers[0] = findMove(*board, "a2a3");
    const std::vector<Move> expected = selectionOrder(scoredMoves(*board));
    MovePicker picker(*board, computePins(*board));
    std::vector<Move> picked = {picker.next<White>()};
    board->record().killers[0] = findMove(*board, "e1g1");
    board->plyRecords[board->ply + 2].killers[0] = findMove(*board, "c3b1");
    for (const Move move : pickAll<White>(picker))
        picked.push_back(move);
    EXPECT_EQ(picked, expected);
}

/// What the picker hands out that gains more than `least`, which falls by `fall` after each move.
template <Colour Us>
std::vector<Move> pickCaptures(const Board_0x88& board, Move preferred, int least, int fall) {
    CapturePicker picker(board);
    picker.prefer(preferred);
    std::vector<Move> picked;
    while (const Move move = picker.next<Us>(least)) {
        int gain = 0;
        isBadCapture<Us>(board, move, gain);
        if (gain <= least) continue;
        picked.push_back(move);
        least -= fall;
    }
    return picked;
}

std::vector<Move> pickCaptures(const Board_0x88& board, Move preferred, int least, int fall) {
    return board.sideToMove == White ? pickCaptures<White>(board, preferred, least, fall)
                                     : pickCaptures<Black>(board, preferred, least, fall);
}

TEST(CapturePicker, LeavesOutWhatGainsTooLittleAndKeepsTheOrderOfTheRest) {
    TestRandom random(10);
    const auto check = [&](const Board_0x88& board) {
        if (inCheck(board)) return;
        std::vector<Move> order = selectionOrder(scoredCaptures(board));
        Move preferred = NoMove;
        if (!order.empty() && random.below(2)) {
            preferred = order[random.below(order.size())];
            order.erase(std::find(order.begin(), order.end(), preferred));
            order.insert(order.begin(), preferred);
        }
        const int first = static_cast<int>(random.below(1300)) - 100;
        const int fall = static_cast<int>(random.below(3)) * 250;
        std::vector<Move> expected;
        int least = first;
        for (const Move move : order) {
            int gain = 0;
            isBadCaptureHere(board, move, gain);
            if (gain <= least) continue;
            expected.push_back(move);
            least -= fall;
        }
        ASSERT_EQ(pickCaptures(board, preferred, first, fall), expected)
            << board.toFEN() << ' ' << preferred << ' ' << first << ' ' << fall;
    };
    for (const char* fen : richPositions) {
        for (int game = 0; game < 10; ++game) {
            forEachRandomPosition(fen, 100, random, check);
        }
    }
    for (const char* fen : oddPositions) {
        forEachRandomPosition(fen, 100, random, check);
    }
    check(*boardOf("3rk3/3pp3/8/8/4R3/8/8/4K2B w - - 0 1"));
    check(*boardOf("r2qk3/1P1b4/2N1p3/8/B3R3/5N2/8/3RK2B w - - 0 1"));  // the king can be taken
    const auto board = boardOf("4k3/8/8/1r1q4/2P1N3/8/8/3RK3 w - - 0 1");
    std::vector<std::string> texts;
    for (const Move move : pickCaptures(*board, NoMove, 0, 0)) {
        texts.push_back(moveToText(move));
    }
    EXPECT_EQ(texts, (std::vector<std::string>{"c4d5", "d1d5", "c4b5"}));
}

TEST(MovePicker, NeverHandsOutAMoveThatIsNotLegalHere) {
    TestRandom random(12);
    for (const char* fen : richPositions) {
        forEachRandomPosition(fen, 20, random, [&](const Board_0x88& board) {
            const std::vector<Move> legal = selectionOrder(scoredMoves(board));
            for (int i = 0; i < 50; ++i) {
                const auto first = static_cast<Move>(random.below(0x10000));
                const auto second = static_cast<Move>(random.below(0x10000));
                std::vector<Move> picked = pickAll(board, first, second);
                ASSERT_TRUE(
                    std::is_permutation(picked.begin(), picked.end(), legal.begin(), legal.end()))
                    << board.toFEN() << ' ' << first << ' ' << second;
            }
        });
    }
}

struct Refusals : RefusedMoveListener {
    void reportRefusedMove(Move move) override { moves.push_back(move); }
    std::vector<Move> moves;
};

TEST(MovePicker, TellsOfTheSecondPreferredMoveThatDoesNotFit) {
    const auto board = boardOf(startPositionFEN);
    const Move legal = findMove(*board, "e2e4");
    const Move illegal = makeMoveWord(E2, E5);
    struct Case {
        Move first;
        Move second;
        std::vector<Move> refused;
    };
    const Case cases[] = {
        {NoMove, illegal, {illegal}},
        {legal, illegal, {illegal}},
        {illegal, legal, {}},  // the first comes from a line that may belong elsewhere
        {illegal, illegal, {illegal}},
        {illegal, NoMove, {}},
        {legal, legal, {}},
    };
    for (const Case& c : cases) {
        Refusals refusals;
        EXPECT_EQ(pickAll(*board, c.first, c.second, &refusals).size(), 20U);
        EXPECT_EQ(refusals.moves, c.refused) << c.first << ' ' << c.second;
    }
}

TEST(MoveScores, KillersOfThisPlyAndTheOneAfterNextComeBeforeQuietMoves) {
    const auto board = boardOf(startPositionFEN);
    board->record().killers[1] = findMove(*board, "h2h3");
    board->plyRecords[2].killers[0] = findMove(*board, "b1a3");
    board->plyRecords[1].killers[0] = findMove(*board, "a2a3");  // the other side's
    std::map<std::string, int> scores;
    for (const ScoredMove& entry : scoredMoves(*board)) {
        scores[moveToText(entry.move())] = entry.score();
    }
    EXPECT_EQ(scores["h2h3"], 150 - 1);
    EXPECT_EQ(scores["b1a3"], 150 - 2);
    EXPECT_LT(scores["a2a3"], 140);
    board->ply = PlyRecordCount - 1;  // no record two plies on
    board->record() = {};
    for (const ScoredMove& entry : scoredMoves(*board)) {
        EXPECT_LT(entry.score(), 140);
    }
}

TEST(BadCapture, LooksAtPawnAndKnightDefenders) {
    struct Case {
        const char* why;
        const char* fen;
        const char* move;
        bool bad;
        int gain;
    };
    const Case cases[] = {
        {"equal trade", "4k3/8/4p3/3n4/8/2N5/8/4K3 w - - 0 1", "c3d5", false, 400},
        {"bishop and knight are equal", "4k3/8/4p3/3n4/8/1B6/8/4K3 w - - 0 1", "b3d5", false, 400},
        {"defended by a pawn", "4k3/8/4p3/3p4/8/2N5/8/4K3 w - - 0 1", "c3d5", true, 125},
        {"a pawn beside does not defend", "4k3/8/8/3pp3/8/2N5/8/4K3 w - - 0 1", "c3d5", false, 125},
        {"rook takes a pawn that a knight defends", "4k3/8/5n2/3p4/8/8/8/3RK3 w - - 0 1", "d1d5",
         true, 125},
        {"bishop takes it", "4k3/8/5n2/3p4/8/1B6/8/4K3 w - - 0 1", "b3d5", false, 125},
        {"rook takes a bishop that a knight defends", "4k3/8/5n2/3b4/8/8/8/3RK3 w - - 0 1", "d1d5",
         false, 400},
        {"queen takes it", "4k3/8/5n2/3b4/8/8/8/3QK3 w - - 0 1", "d1d5", true, 400},
        {"queen takes queen", "4k3/8/5n2/3q4/8/8/8/3QK3 w - - 0 1", "d1d5", false, 1125},
        {"queen takes rook, pawn defends", "4k3/8/4p3/3r4/8/8/8/3QK3 w - - 0 1", "d1d5", true, 600},
        {"promotion", "3r4/4P3/8/8/8/8/k7/4K3 w - - 0 1", "e7d8q", false, 1000},
        {"underpromotion", "8/4P3/8/8/8/8/k7/4K3 w - - 0 1", "e7e8n", false, 275},
        {"en passant", "4k3/2p5/8/3pP3/8/8/8/4K3 w - d6 0 1", "e5d6", false, 125},
        {"castling", "4k3/8/8/8/8/8/8/4K2R w K - 0 1", "e1g1", false, -7},  // stays as it was
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        std::string move = c.move;
        std::string fen = c.fen;
        for (int side = 0; side < 2; ++side) {
            const auto board = boardOf(fen);
            int gain = -7;
            ASSERT_NE(findMove(*board, move), NoMove) << fen;
            EXPECT_EQ(isBadCaptureHere(*board, findMove(*board, move), gain), c.bad) << fen;
            EXPECT_EQ(gain, c.gain) << fen;
            fen = mirroredFEN(fen);
            move[1] = static_cast<char>('1' + '8' - move[1]);
            move[3] = static_cast<char>('1' + '8' - move[3]);
        }
    }
}

}  // namespace
}  // namespace vatro
