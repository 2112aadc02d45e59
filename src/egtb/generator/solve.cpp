// egtb/generator/solve.cpp - from the mates backward, ply by ply.
#include <atomic>
#include <utility>

#include "egtb/generator/ending.h"
#include "egtb/generator/parallel.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 2048;
constexpr int NoPly = 0;  // no capture decides a position at once

template <typename Work>
void forEachWord(const Workers& workers, const WordLayout& layout, const Work& work) {
    parallelFor(workers, layout.wordCount(), WordsPerTask,
                [&](std::uint64_t begin, std::uint64_t end) {
                    for (std::uint64_t word = begin; word < end; ++word) {
                        work(word);
                    }
                });
}

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

/// Takes the candidates of the word, and those of `capturing` whose capture has the value
/// `decisive`.
SquareMask Ending::takeCandidates(SideToMove& side,
                                  std::uint64_t word,
                                  SquareMask capturing,
                                  Value decisive) {
    SquareMask taken = std::exchange(side.candidates[word], 0);
    const ValueLine& values = side.values[word];
    for (SquareMask rest = capturing & ~taken; rest; rest &= rest - 1) {
        if (values[lowestSquare(rest)] == decisive) taken |= rest & -rest;
    }
    return taken;
}

/// The candidates that lose: no quiet move escapes, and no capture delays the mate to its own ply.
template <Colour Us>
SquareMask Ending::lostAmong(std::uint64_t word, SquareMask candidates, int plies) const {
    SquareMask lost =
        candidates & ~movesToNotWon<Us>(word, layout.pieces(word), candidates, plies - 1);
    const ValueLine& values = sides[Us].values[word];
    for (SquareMask rest = lost; rest; rest &= rest - 1) {
        if (values[lowestSquare(rest)] > lossIn(plies)) lost &= ~(rest & -rest);
    }
    return lost;
}

/// The positions of the word that are won (odd plies) or lost (even ones) at this ply. Their value
/// is set, and they are open no more.
template <Colour Us>
SquareMask Ending::decide(std::uint64_t word, int plies) {
    SideToMove& side = sides[Us];
    const bool byCapture = side.capturePly[word] == plies;
    if (side.candidates[word] == 0 && !byCapture) return 0;
    const bool wins = plies % 2 != 0;
    const Value value = wins ? winIn(plies) : lossIn(plies);
    SquareMask capturing = byCapture ? side.open[word] : 0;
    if (!wins) capturing &= side.losable[word];
    SquareMask decided = takeCandidates(side, word, capturing, value);
    if (decided && !wins) decided = lostAmong<Us>(word, decided, plies);
    if (decided) {
        side.open[word] &= ~decided;
        if (wins) side.notWon[word] &= ~decided;
        for (SquareMask rest = decided; rest; rest &= rest - 1) {
            side.values[word][lowestSquare(rest)] = value;
        }
    }
    if (byCapture) findNextCapture(side, word, plies);
    return decided;
}

void Ending::settleDraws(const Workers& workers) {
    forEachWord(workers, layout, [&](std::uint64_t word) {
        const WordPieces pieces = layout.pieces(word);
        for (const Colour us : {White, Black}) {
            for (SquareMask rest = sides[us].open[word]; rest; rest &= rest - 1) {
                sides[us].values[word][lowestSquare(rest)] = DrawValue;
            }
            sides[us].open[word] = legalKings(layout.men(), pieces, us);
        }
    });
}

template <Colour Us>
void Ending::findAllPassingCandidates(const Workers& workers, int plies) {
    const std::vector<std::uint32_t>& passing = sides[Us].passingWords;
    parallelFor(workers, passing.size(), WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t i = begin; i < end; ++i) {
            findPassingCandidates<Us>(passing[i], plies);
        }
    });
}

/// True when a position was decided at this ply.
bool Ending::decideAll(const Workers& workers, int plies) {
    std::atomic<bool> found{false};
    const auto note = [&found](SquareMask& last, SquareMask decided) {
        if (last != decided) last = decided;  // most are 0 before and after
        if (decided && !found.load(std::memory_order_relaxed)) found = true;
    };
    forEachWord(workers, layout, [&](std::uint64_t word) {
        note(sides[White].decided[word], decide<White>(word, plies));
        note(sides[Black].decided[word], decide<Black>(word, plies));
    });
    return found;
}

Status Ending::solve(const Workers& workers, const PlyDone& plyDone) {
    // 1. A move is legal when it leads to a legal position; `prepare` has found all of these.
    forEachWord(workers, layout, [&](std::uint64_t word) {
        findMatesAndStalemates<White>(word);
        findMatesAndStalemates<Black>(word);
    });
    // 2. Done after an odd and an even ply that found nothing, once every capture has had its ply.
    for (int plies = 1, idle = 0; idle < 2 || plies <= longestSubMate + 2; ++plies) {
        forEachWord(workers, layout, [&](std::uint64_t word) {
            findCandidates<White>(word, plies);
            findCandidates<Black>(word, plies);
        });
        findAllPassingCandidates<White>(workers, plies);
        findAllPassingCandidates<Black>(workers, plies);
        const bool found = decideAll(workers, plies);
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
