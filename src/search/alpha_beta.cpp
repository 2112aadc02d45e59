// src/search/alpha_beta.cpp - a node of the main search, and one in check.
//
// The entry of each routine is the only place where check is detected. "Null window" means that
// alpha and beta leave no room between them: only then are the riskier cuts taken.
#include "board/move_generation.h"
#include "search/search_moves.h"

namespace vatro {
namespace {

// All tuned; no derivation.
constexpr int RazoringDepth = 3;
constexpr int RazoringBase = 200;  // centipawns
constexpr int RazoringStep = 32;   // per depth
constexpr int StaticPruningDepth = 5;
constexpr int StaticPruningStep = 80;  // centipawns per depth
constexpr int NullMoveDepth = 2;
constexpr int IterativeDepth = 3;  // of internal iterative deepening
constexpr int SingleReplyHeight = 7;

bool isBeyondMate(int score) { return score > MateThreshold || score < -MateThreshold; }

/// Two null moves in a row have just been made on this line.
bool passedTwice(const Board_0x88& board, int height) {
    if (height < 2) return false;  // the game before the root is not asked
    return board.plyRecords[board.ply - 1].movePlayed == NoMove &&
           board.plyRecords[board.ply - 2].movePlayed == NoMove;
}

}  // namespace

template <Colour Us>
inline bool Searcher::isDecided(int alpha,
                                int beta,
                                int height,
                                int depth,
                                PrincipalVariation& line,
                                NodeBounds& bounds,
                                Move& tableMove,
                                int& score) {
    DrawReason reason;
    if (!enterNode()) {
        score = AbortScore;
        return true;
    }
    if (isDraw(board, reason)) {
        score = DrawScore;
        return true;
    }
    bounds = boundsAt<Us>(alpha, beta, height);
    if (bounds.isEmpty()) {
        score = bounds.alpha;
        store(bounds, height, depth, score, NoMove);
        return true;
    }
    const TTProbe known = context.transpositionTable.probe(
        board.record().key, {bounds.alpha, bounds.beta, height, depth});
    statistics.ttHits += known.hit;
    tableMove = known.move;
    score = known.score;
    if (known.cutoff && tableMove) line.setTo(tableMove);
    return known.cutoff;
}

template <Colour Us>
int Searcher::alphaBeta(int alpha, int beta, int height, int depth, PrincipalVariation& line) {
    constexpr Colour Them = Side<Us>::Them;

    // 1. In check: the evasion search, one ply deeper.
    if (const SquareMask checkers = findCheckers<Us>(board)) {
        return searchEvasions<Us>(checkers, alpha, beta, height, depth + 1, line);
    }

    // 2. Time, draws, the scores that are still possible, and the transposition table.
    NodeBounds bounds;
    Move tableMove;
    int early;
    if (isDecided<Us>(alpha, beta, height, depth, line, bounds, tableMove, early)) return early;

    // 3. The tablebases: near the root from disk, further down from their cache.
    if (board.totalCount() <= MaxTablebasePieces && context.tablebases.initialised()) {
        const int sure = static_cast<int>(iterationDepth) - 7;
        int score;
        if (probeTablebases<Us>(sure < 0 || depth > std::min(sure, 4), score)) {
            if (score > 0) return score - height;
            return score < 0 ? score + height : score;
        }
    }

    // 4. The static score, and a stop where the line has no room left.
    const int eval = evaluateHere(bounds.alpha, bounds.beta);
    if (isLineFull(board)) return eval;

    // 5. Razoring: far below alpha, only captures can help.
    if (depth <= RazoringDepth && bounds.isNull() && !tableMove &&
        bounds.alpha >= -MateThreshold - 1 && bounds.alpha < MateThreshold) {
        const int threshold = bounds.alpha - RazoringBase - RazoringStep * depth;
        if (eval <= threshold) {
            PrincipalVariation scratch;
            const int score = quiescence<Us>(threshold, threshold + 1, height, scratch);
            if (stopped()) return AbortScore;
            if (score <= threshold) return score;
        }
    }

    // 6. Static pruning: so far above beta that the depth left will not change it.
    if (depth <= StaticPruningDepth && !isBeyondMate(bounds.alpha) && !isBeyondMate(bounds.beta)) {
        const int score = eval - StaticPruningStep * depth;
        if (score >= bounds.beta) {
            store(bounds, height, depth, score, NoMove);
            return score;
        }
    }

    // 7. Null move: if passing is good enough, moving is.
    if (depth >= NullMoveDepth && bounds.isNull() && eval >= bounds.beta &&
        !passedTwice(board, height) && board.totalCount(Us) - board.count(Us, Pawn) > 1) {
        NullUndo undo;
        PrincipalVariation scratch;
        const int reduced = depth - std::min(depth / 4, 3) - 4;
        makeNullMove(board, undo);
        int score =
            reduced < 1
                ? -quiescence<Them>(-bounds.beta, 1 - bounds.beta, height + 1, scratch)
                : -alphaBeta<Them>(-bounds.beta, 1 - bounds.beta, height + 1, reduced, scratch);
        unmakeNullMove(board, undo);
        if (stopped()) return AbortScore;
        if (score >= bounds.beta) {
            if (score > MateThreshold) score = bounds.beta;  // passing proves no mate
            store(bounds, height, depth, score, NoMove);
            return score;
        }
    }

    // 8. Internal iterative deepening: a shallower search finds the move to try first.
    if (!tableMove && depth >= IterativeDepth && !bounds.isNull()) {
        PrincipalVariation scratch;
        alphaBeta<Us>(bounds.alpha, bounds.beta, height, depth - 2, scratch);
        if (stopped()) return AbortScore;
        tableMove = scratch.first();
    }

    // 9. The moves; a forced one costs no depth near the root.
    const PinInfo pins = computePins<Us>(board, 0);
    if (height <= SingleReplyHeight && hasOnlyOneLegalMove<Us>(board, pins)) ++depth;
    MovePicker picker(board, pins, MovePicker::Phase::AllMoves);
    picker.prefer(line.first(), tableMove);
    const int score = searchMoves<Us, true>(picker, bounds, height, depth, line);
    return score == NoMoveScore ? DrawScore : score;  // stalemate
}

template <Colour Us>
int Searcher::searchEvasions(
    SquareMask checkers, int alpha, int beta, int height, int depth, PrincipalVariation& line) {
    NodeBounds bounds;
    Move tableMove;
    int early;
    if (isDecided<Us>(alpha, beta, height, depth, line, bounds, tableMove, early)) return early;
    if (isLineFull(board)) return evaluateHere(bounds.alpha, bounds.beta);

    MovePicker picker(board, computePins<Us>(board, checkers), MovePicker::Phase::AllMoves);
    picker.prefer(line.first(), tableMove);
    const int score = searchMoves<Us, false>(picker, bounds, height, depth, line);
    return score == NoMoveScore ? height - MateScore : score;  // checkmate
}

template int Searcher::alphaBeta<White>(int, int, int, int, PrincipalVariation&);
template int Searcher::alphaBeta<Black>(int, int, int, int, PrincipalVariation&);
template int Searcher::searchEvasions<White>(SquareMask, int, int, int, int, PrincipalVariation&);
template int Searcher::searchEvasions<Black>(SquareMask, int, int, int, int, PrincipalVariation&);

}  // namespace vatro
