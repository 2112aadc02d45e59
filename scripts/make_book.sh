#!/bin/bash
# make_book.sh GAMES BOOK: compiles a file of games (PGN) into an opening book, with the program polyglot.
set -e
PATH="$PATH:/usr/games"
polyglot make-book -pgn "$1" -bin "$2.new" -max-ply 30 -min-game 1
mv "$2.new" "$2"
