// search/alpha_beta.cpp - a node of the main search, and one in check.
//
// Check is detected on entering a node and nowhere else. The riskier cuts are taken in a null
// window only, where the question is just whether the score reaches beta.
#include "board/move_generation.h"
#include "search/search_moves.h"

namespace vatro {
namespace {

// Depths are in plies, margins in centipawns. All tuned; no derivation.
constexpr int RazoringDepth = 3;
constexpr int RazoringBase = 200;
constexpr int RazoringStep = 32;  // per depth
constexpr int StaticPruningDepth = 5;
constexpr int StaticPruningStep = 80;  // per depth
constexpr int NullMoveDepth = 2;
constexpr int NullMoveReduction = 4;  // the ply of the pass included
constexpr int NullMoveMostExtra = 3;  // of a quarter of the depth, by which it grows
constexpr int IterativeDepth = 3;     // of internal iterative deepening
constexpr int IterativeReduction = 2;
constexpr int SingleReplyHeight = 7;

constexpr int depthAfterNullMove(int depth) {
    return depth - NullMoveReduction - std::min(depth / 4, NullMoveMostExtra);
}

/// Two null moves in a row have just been made on this line.
bool passedTwice(const Board_0x88& board, int height) {
    if (height < 2) return false;  // the records before the root are the game's
    return board.plyRecords[board.ply - 1].movePlayed == NoMove &&
           board.plyRecords[board.ply - 2].movePlayed == NoMove;
}

}  // namespace

/// Waiting for the disk pays only where much depends on the answer: nodes with little depth left
/// ask for what is in memory. In the first iterations every node may wait; then one more ply counts
/// as little with each iteration, up to four. Tuned; no derivation.
inline bool Searcher::mayReadTablebases(int depth) const {
    constexpr int FirstIterations = 7;
    constexpr int MostLittleDepth = 4;
    return depth > std::min(iterationDepth - FirstIterations, MostLittleDepth);
}

template <Colour Us>
inline std::optional<int> Searcher::openNode(const NodeWindow& window,
                                             PrincipalVariation& line,
                                             Node& node) {
    DrawReason reason;
    if (!enterNode()) return AbortScore;
    if (isDraw(board, reason)) {
        // A mate by the hundredth ply without a capture or pawn move comes before the draw.
        const bool mated = reason == DrawReason::FiftyMoves && isCheckmated<Us>(board);
        return mated ? window.height - MateScore : DrawScore;
    }
    node = narrowed<Us>(window);
    if (node.isEmpty()) {
        store(node, node.alpha, NoMove);
        return node.alpha;
    }
    const std::optional<TTData> known = context.transpositionTable.probe(board.record().key);
    if (!known) return std::nullopt;
    ++statistics.ttHits;
    node.tableMove = known->move;
    if (known->depth < node.depth) return std::nullopt;
    const int score = scoreFromTable(known->score, node.height);
    if (!answers(node, score, known->bound)) return std::nullopt;
    if (known->move) line.setTo(known->move);
    return score;
}

template <Colour Us>
int Searcher::alphaBeta(const NodeWindow& window, PrincipalVariation& line) {
    constexpr Colour Them = Side<Us>::Them;

    // 1. In check: the evasion search, one ply deeper.
    if (const SquareMask checkers = findCheckers<Us>(board)) {
        return searchEvasions<Us>(checkers, window.withDepth(window.depth + 1), line);
    }

    // 2. Time, draws, the scores that are still possible, and the transposition table.
    Node node;
    if (const std::optional<int> score = openNode<Us>(window, line, node)) return *score;

    // 3. The tablebases.
    if (board.totalCount() <= MaxTablebasePieces && context.tablebases.initialised()) {
        const bool mayRead = mayReadTablebases(node.depth);
        if (const std::optional<int> score = probeTablebases<Us>(mayRead)) {
            return scoreFromTable(*score, node.height);
        }
    }

    // 4. The static score, and a stop where the line has no room left.
    const int eval = evaluateHere(node);
    if (isLineFull(board)) return eval;

    // 5. Razoring: far below alpha, only captures can help.
    if (node.depth <= RazoringDepth && node.isNull() && !node.tableMove &&
        !isMateScore(node.beta)) {
        const int threshold = node.alpha - RazoringBase - RazoringStep * node.depth;
        if (eval <= threshold) {
            PrincipalVariation scratch;
            const int score = quiescence<Us>({threshold, threshold + 1, node.height, 0}, scratch);
            if (stopped()) return AbortScore;
            if (score <= threshold) return score;
        }
    }

    // 6. Static pruning: so far above beta that the depth left will not change it.
    if (node.depth <= StaticPruningDepth && !isMateScore(node.alpha) && !isMateScore(node.beta)) {
        const int score = eval - StaticPruningStep * node.depth;
        if (score >= node.beta) {
            store(node, score, NoMove);
            return score;
        }
    }

    // The table's move will probably be searched soon.
    if (node.depth > 1 && node.tableMove) prefetchAfter(node.tableMove);

    // 7. Null move: if passing is good enough, moving is. With nothing but pawns that may be wrong.
    if (node.depth >= NullMoveDepth && node.isNull() && eval >= node.beta &&
        !passedTwice(board, node.height) && board.totalCount(Us) - board.count(Us, Pawn) > 1) {
        NullUndo undo;
        PrincipalVariation scratch;
        const NodeWindow child =
            node.forChild(node.beta - 1, node.beta, depthAfterNullMove(node.depth));
        makeNullMove(board, undo);
        int score =
            child.depth < 1 ? -quiescence<Them>(child, scratch) : -alphaBeta<Them>(child, scratch);
        unmakeNullMove(board, undo);
        if (stopped()) return AbortScore;
        if (score >= node.beta) {
            if (score > MateThreshold) score = node.beta;  // passing proves no mate
            store(node, score, NoMove);
            return score;
        }
    }

    // 8. Internal iterative deepening: a shallower search finds the move to try first.
    if (!node.tableMove && node.depth >= IterativeDepth && !node.isNull()) {
        PrincipalVariation scratch;
        alphaBeta<Us>(node.withDepth(node.depth - IterativeReduction), scratch);
        if (stopped()) return AbortScore;
        node.tableMove = scratch.first();
    }

    // 9. The moves; a forced one costs no depth near the root.
    const PinInfo pins = computePins<Us>(board, 0);
    if (node.height <= SingleReplyHeight && hasOnlyOneLegalMove<Us>(board, pins)) ++node.depth;
    MovePicker picker(board, pins);
    picker.prefer(line.first(), node.tableMove, &context.reporter);
    return searchMoves<Us>(picker, node, line, [](int) {});
}

template <Colour Us>
int Searcher::searchEvasions(SquareMask checkers,
                             const NodeWindow& window,
                             PrincipalVariation& line) {
    MovePicker picker(board, computePins<Us>(board, checkers));
    // Beyond the horizon no move loop has announced the position to the table.
    const bool isAnnounced = window.depth > 1;
    if (!isAnnounced) {
        context.transpositionTable.prefetch(board.record().key);
        picker.generateAll<Us>();
    }

    Node node;
    if (const std::optional<int> score = openNode<Us>(window, line, node)) return *score;
    if (isLineFull(board)) return evaluateHere(node);
    picker.prefer(line.first(), node.tableMove, &context.reporter);
    node.inCheck = true;
    return searchMoves<Us>(picker, node, line, [](int) {});
}

template int Searcher::alphaBeta<White>(const NodeWindow&, PrincipalVariation&);
template int Searcher::alphaBeta<Black>(const NodeWindow&, PrincipalVariation&);
template int Searcher::searchEvasions<White>(SquareMask, const NodeWindow&, PrincipalVariation&);
template int Searcher::searchEvasions<Black>(SquareMask, const NodeWindow&, PrincipalVariation&);

}  // namespace vatro
