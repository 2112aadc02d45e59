// egtb/generator/solve.cpp - from the mates backward, ply by ply.
#include <algorithm>
#include <atomic>

#include "egtb/generator/ending.h"
#include "egtb/generator/parallel.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 2048;
constexpr int NoPly = 0;  // no capture decides a position at once

}  // namespace

template <Colour Us>
void Ending::findMatesAndStalemates(std::uint64_t word) {
    SideToMove& side = sides[Us];
    const SquareMask legal = side.notWon[word];
    if (legal == 0) return;
    const WordPieces pieces = layout.pieces(word);
    ValueLine& values = side.values[word];
    SquareMask stuck = legal & ~movesToNotWon<Us>(word, pieces, legal, 0);
    SquareMask saved = 0;
    for (const Square64 king : allSquares) {
        if (values[king] != NoMoveValue) stuck &= ~maskOf(king);
        if (values[king] >= DrawValue) saved |= maskOf(king);
    }
    const SquareMask inCheck =
        Us == White ? whiteInCheck(layout.men(), pieces) : whiteAttacks(layout.men(), pieces);
    side.decided[word] = stuck & inCheck;  // their value is right: NoMoveValue is that of a mate
    for (SquareMask rest = stuck & ~inCheck; rest; rest &= rest - 1) {
        values[lowestSquare(rest)] = DrawValue;
    }
    side.open[word] = legal & ~stuck;
    side.losable[word] = legal & ~stuck & ~saved;
    findNextCapture(side, word, 0);
    for (int pawn = 0; pawn < layout.menCount(); ++pawn) {
        if (side.open[word] == 0 || !canBePassed<Us>(pieces, pawn)) continue;
        const std::lock_guard<std::mutex> lock(listing);
        side.passingWords.push_back(static_cast<std::uint32_t>(word));
        break;
    }
}

/// Sets the next ply after `plies` at which a capture decides an open position of the word.
void Ending::findNextCapture(SideToMove& side, std::uint64_t word, int plies) const {
    const ValueLine& values = side.values[word];
    int next = NoPly;
    for (SquareMask rest = side.open[word]; rest; rest &= rest - 1) {
        const Value value = values[lowestSquare(rest)];
        if (value == NoMoveValue || value == DrawValue) continue;
        const int ply = pliesOfValue(value);
        if (ply > plies && (next == NoPly || ply < next)) next = ply;
    }
    side.capturePly[word] = static_cast<std::uint8_t>(next);
}

/// The open positions that a quiet move of `Us` links to what was decided at the ply before: it
/// decides them when they win, and may decide them when they lose.
template <Colour Us>
void Ending::findCandidates(std::uint64_t word, int plies) {
    const SquareMask decided = sides[~Us].decided[word];
    if (decided) unmoveQuietly<Us>(word, decided, plies % 2 == 0);
}

template <Colour Us>
void Ending::findPassingCandidates(std::uint64_t word, int plies) {
    const SquareMask open = sides[Us].open[word];
    if (open == 0) return;
    const bool losable = plies % 2 == 0;
    addCandidates<Us>(word, losable ? open : doubleStepsToLost<Us>(word, open, plies - 1), losable);
}

template <Colour Us>
SquareMask Ending::decideWins(std::uint64_t word, int plies) {
    SideToMove& side = sides[Us];
    SquareMask won = side.candidates[word];
    side.candidates[word] = 0;
    ValueLine& values = side.values[word];
    const bool byCapture = side.capturePly[word] == plies;
    if (byCapture) {
        for (SquareMask rest = side.open[word] & ~won; rest; rest &= rest - 1) {
            if (values[lowestSquare(rest)] == winIn(plies)) won |= rest & -rest;
        }
    }
    if (won) {
        side.open[word] &= ~won;
        side.notWon[word] &= ~won;
        for (SquareMask rest = won; rest; rest &= rest - 1) {
            values[lowestSquare(rest)] = winIn(plies);
        }
    }
    if (byCapture) findNextCapture(side, word, plies);
    return won;
}

template <Colour Us>
SquareMask Ending::decideLosses(std::uint64_t word, int plies) {
    SideToMove& side = sides[Us];
    SquareMask lost = side.candidates[word];
    side.candidates[word] = 0;
    ValueLine& values = side.values[word];
    const bool byCapture = side.capturePly[word] == plies;
    if (byCapture) {
        const SquareMask losable = side.open[word] & side.losable[word] & ~lost;
        for (SquareMask rest = losable; rest; rest &= rest - 1) {
            if (values[lowestSquare(rest)] == lossIn(plies)) lost |= rest & -rest;
        }
    }
    if (lost) {
        const WordPieces pieces = layout.pieces(word);
        lost &= ~movesToNotWon<Us>(word, pieces, lost, plies - 1);
        for (SquareMask rest = lost; rest; rest &= rest - 1) {
            Value& value = values[lowestSquare(rest)];
            if (value > lossIn(plies)) {
                lost &= ~(rest & -rest);  // a capture delays the mate, to its own ply
            } else {
                value = lossIn(plies);
            }
        }
        side.open[word] &= ~lost;
    }
    if (byCapture) findNextCapture(side, word, plies);
    return lost;
}

void Ending::settleDraws(const Workers& workers) {
    const std::uint64_t words = layout.wordCount();
    parallelFor(workers, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            const WordPieces pieces = layout.pieces(word);
            for (const Colour us : {White, Black}) {
                for (SquareMask rest = sides[us].open[word]; rest; rest &= rest - 1) {
                    sides[us].values[word][lowestSquare(rest)] = DrawValue;
                }
                sides[us].open[word] = legalKings(layout.men(), pieces, us);
            }
        }
    });
}

Status Ending::solve(const Workers& workers, const PlyDone& plyDone) {
    const std::uint64_t words = layout.wordCount();
    // 1. A move is legal when it leads to a legal position; `prepare` has found all of these.
    parallelFor(workers, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            findMatesAndStalemates<White>(word);
            findMatesAndStalemates<Black>(word);
        }
    });
    // 2. Done after an odd and an even ply that found nothing, once every capture has had its ply.
    for (int plies = 1, idle = 0; idle < 2 || plies <= longestSubMate + 2; ++plies) {
        parallelFor(workers, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
            for (std::uint64_t word = begin; word < end; ++word) {
                findCandidates<White>(word, plies);
                findCandidates<Black>(word, plies);
            }
        });
        const auto& passingWhite = sides[White].passingWords;
        parallelFor(workers, passingWhite.size(), WordsPerTask,
                    [&](std::uint64_t begin, std::uint64_t end) {
                        for (std::uint64_t i = begin; i < end; ++i) {
                            findPassingCandidates<White>(passingWhite[i], plies);
                        }
                    });
        const auto& passingBlack = sides[Black].passingWords;
        parallelFor(workers, passingBlack.size(), WordsPerTask,
                    [&](std::uint64_t begin, std::uint64_t end) {
                        for (std::uint64_t i = begin; i < end; ++i) {
                            findPassingCandidates<Black>(passingBlack[i], plies);
                        }
                    });
        std::atomic<bool> found{false};
        parallelFor(workers, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
            SquareMask any = 0;
            for (std::uint64_t word = begin; word < end; ++word) {
                for (const Colour us : {White, Black}) {
                    SideToMove& side = sides[us];
                    SquareMask decided = 0;
                    if (side.candidates[word] || side.capturePly[word] == plies) {
                        if (plies & 1) {
                            decided = us == White ? decideWins<White>(word, plies)
                                                  : decideWins<Black>(word, plies);
                        } else {
                            decided = us == White ? decideLosses<White>(word, plies)
                                                  : decideLosses<Black>(word, plies);
                        }
                    }
                    if (side.decided[word] != decided) side.decided[word] = decided;
                    any |= decided;
                }
            }
            if (any) found.store(true, std::memory_order_relaxed);
        });
        if (found && plies > MaxPlies) {
            return Status::failure(material.name() + " has mates of more than " +
                                   std::to_string(MaxPlies) +
                                   " plies, which the file format does not hold");
        }
        idle = found ? 0 : idle + 1;
        if (found) maxPlies = plies;
        if (workers.areStopped() || !plyDone(plies)) return Status::interrupted();
    }
    // 3. What is still open is drawn.
    settleDraws(workers);
    return Status::good();
}

}  // namespace vatro::egtb
