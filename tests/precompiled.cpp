// tests/precompiled.cpp - empty; a precompiled header needs a source to belong to.
