// board/board.h - one position with the history that the search and the draw tests need.
//
// A 0x88 mailbox and one piece list per colour fix the order in which pieces are visited; square
// masks by colour and type, kept beside them, answer questions about attacks.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "board/move.h"
#include "board/score_sum.h"
#include "board/types.h"

namespace vatro {

/// Where the pieces of one type stand in a piece list, and how many of them a side may have.
struct SlotRule {
    std::uint8_t firstSlot;
    std::uint8_t slotCount;
    std::uint8_t maxCount;
    std::uint8_t lastSlot;
};
/// By piece type. Surplus pieces (a second queen, say) stand in the pawns' slots.
inline constexpr SlotRule slotRules[PieceTypeCount] = {
    {0, 0, 0, 0},                                 // NoPiece
    {8, 8, 8, 15}, {6, 2, 10, 7}, {4, 2, 10, 5},  // Pawn, Knight, Bishop
    {2, 2, 10, 3}, {1, 1, 9, 1},  {0, 1, 1, 0},   // Rook, Queen, King
};

constexpr int SlotCount = 16;
constexpr int KingSlot = 0;
constexpr int FirstPawnSlot = 8;
constexpr std::uint8_t NoSlot = 16;

/// The pieces of one colour: slot 0 king, 1 queen, 2-3 rooks, 4-5 bishops, 6-7 knights, 8-15 pawns
/// and surplus pieces.
struct PieceList {
    static constexpr int Total = 7;    // index of the count of all pieces
    static constexpr int Surplus = 0;  // index of the count of non-pawns in slots 8-15

    Square squares[SlotCount];  // NoSquare in an empty slot
    std::uint8_t counts[8];     // by piece type, and the two above

    /// All counts in one word. They are changed as one too: a load that takes in single bytes just
    /// stored has to wait until they have reached the cache.
    std::uint64_t countWord() const {
        std::uint64_t word;
        static_assert(sizeof word == sizeof counts);
        std::memcpy(&word, counts, sizeof word);
        return word;
    }
    void countIn(PieceType type, int slot) { setCounts(countWord() + countsOf(type, slot)); }
    void countOut(PieceType type, int slot) { setCounts(countWord() - countsOf(type, slot)); }

  private:
    void setCounts(std::uint64_t word) { std::memcpy(counts, &word, sizeof word); }
    static constexpr std::uint64_t one(int index) {
        std::array<std::uint8_t, 8> bytes{};
        bytes[static_cast<unsigned>(index)] = 1;
        return std::bit_cast<std::uint64_t>(bytes);
    }
    /// What a piece adds to the counts.
    static std::uint64_t countsOf(PieceType type, int slot) {
        static constexpr std::array<std::uint64_t, PieceTypeCount> inHomeSlot = {
            0,
            one(Pawn) + one(Total),
            one(Knight) + one(Total),
            one(Bishop) + one(Total),
            one(Rook) + one(Total),
            one(Queen) + one(Total),
            one(King) + one(Total)};
        const bool isSurplus = slot >= FirstPawnSlot && type != Pawn;
        return inHomeSlot[type] + (isSurplus ? one(Surplus) : 0);
    }
};

/// One record per ply of the line: game moves, then search moves.
struct PlyRecord {
    Key key;
    Key pawnKey;                // the keys of the pawns alone
    std::uint16_t repetitions;  // how often the position has occurred before; kept by isDraw
    Move killers[2];            // written by the search, the latest first
    Move movePlayed;            // from this position; NoMove for a null move
};

constexpr unsigned PlyRecordCount = 1024;
constexpr unsigned PerftKeyCount = 64;

/// What differs from one kind of board to another: how its keys are computed from scratch.
class Board_Common {
  public:
    /// XOR of the piece-square keys of all pieces of a colour.
    virtual Key pieceKey(Colour colour) const = 0;
    /// XOR of the piece-square keys of all pawns.
    virtual Key pawnKeyOf() const = 0;

  protected:
    ~Board_Common() = default;
};

/// The board. One thread at a time uses it; a search works on its own copy.
///
/// Between public operations: lists, masks and counts agree with the mailbox, `pstScore` is the sum
/// over the pieces, and the keys of record `ply` are those of the position.
class Board_0x88 final : public Board_Common {
  public:
    Board_0x88();

    /// Empties the board: nobody is to move, no rights, ply 0.
    void clearBoard();

    /// Sets the position of a FEN; the clocks may be missing. False when a field is malformed or a
    /// side has more pieces than its list holds; the board then needs another setup. Castling
    /// rights without king and rook at home are dropped.
    [[nodiscard]] bool setupFromFEN(const char* fen);

    /// The position in Forsyth-Edwards notation, six fields. The full-move number is not kept by
    /// the board and is passed in (1 or more).
    std::string toFEN(unsigned fullMoveNumber = 1) const;

    /// Places a piece on an empty square and updates keys and sums. False when the side may not
    /// have another one; nothing changes then.
    bool addPiece(Square square, PieceType type, Colour colour);

    Key pieceKey(Colour colour) const override;
    Key pawnKeyOf() const override;
    /// The key of the position from scratch.
    Key fullKey() const;

    const PlyRecord& record() const { return plyRecords[ply]; }
    PlyRecord& record() { return plyRecords[ply]; }
    /// The king's square, NoSquare when the colour has none.
    Square kingSquare(Colour colour) const { return pieceLists[colour].squares[KingSlot]; }
    bool hasKing(Colour colour) const { return pieceMask[colour][King] != 0; }
    int count(Colour colour, PieceType type) const { return pieceLists[colour].counts[type]; }
    int totalCount(Colour colour) const { return pieceLists[colour].counts[PieceList::Total]; }
    int totalCount() const { return totalCount(White) + totalCount(Black); }
    SquareMask occupied() const { return pieceMask[White][NoPiece] | pieceMask[Black][NoPiece]; }
    PieceType pieceAt(Square square) const { return static_cast<PieceType>(pieceOn[square]); }
    Colour colourAt(Square square) const { return static_cast<Colour>(colourOn[square]); }
    Colour toMove() const { return static_cast<Colour>(sideToMove); }

    ScoreSum pstScore[ColourCount];  // sums of the piece-square values, by colour
    /// By colour and piece type: the squares of those pieces; by NoPiece: of all of them.
    SquareMask pieceMask[ColourCount][PieceTypeCount];
    std::uint8_t castlingRights;  // set of CastlingRight, within possibleRights
    Square epSquare;              // where a pawn can capture en passant, else NoSquare
    std::uint8_t halfmoveClock;   // plies since the last capture or pawn move
    std::uint8_t sideToMove;      // a Colour; NoColour until a position is set
    std::uint8_t pieceOn[128];    // PieceType by 0x88 square
    std::uint8_t colourOn[128];   // Colour by 0x88 square, NoColour when empty
    std::uint8_t slotOn[128];     // slot in the piece list, NoSlot when empty
    PieceList pieceLists[ColourCount];
    std::uint32_t ply;       // index of the current record
    std::uint32_t perftPly;  // index of the current perft key
    Key perftKeys[PerftKeyCount];
    PlyRecord plyRecords[PlyRecordCount];

  private:
    bool readPlacement(const char*& text);
    bool readSideToMove(const char*& text);
    bool readCastlingRights(const char*& text);
    bool readEnPassant(const char*& text);
    bool readClocks(std::string_view text);
    void dropImpossibleRights();
};

inline constexpr char startPositionFEN[] =
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

/// The castling rights whose king and rook stand at home.
unsigned possibleRights(const Board_0x88& board);

/// The board as eight comment lines, rank 8 first, and a line that closes them.
std::string boardText(const Board_0x88& board);

/// True when lists, masks, counts, sums and keys agree with the mailbox. For assertions and tests.
bool isConsistent(const Board_0x88& board);

/// Adds the piece at `slot` to the mailbox, the list, the counts and the masks; no keys, no sums.
void putInSlot(Board_0x88& board, Square square, PieceType type, Colour colour, int slot);

}  // namespace vatro
