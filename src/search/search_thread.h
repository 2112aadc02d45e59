// search/search_thread.h - a worker with a search of its own.
#pragma once

#include "search/searcher.h"
#include "search/worker_thread.h"

namespace vatro {

class SearchThread final : public WorkerThread {
  public:
    SearchThread(unsigned threadIndex,
                 Task work,
                 void* taskArgument,
                 const SearchContext& shared,
                 EngineInterface* engineToTell)
        : WorkerThread(threadIndex, work, taskArgument),
          searcher(threadIndex, shared),
          engine(engineToTell) {}
    ~SearchThread() override { quit(); }

    /// Starts a search of the game's position. What an earlier one left is cleared first, so that a
    /// stop that comes right after is not lost.
    void startSearch(const Board_0x88& gameBoard) {
        searcher.prepare(gameBoard);
        start();
    }
    /// Asks a running search to end, and to play no move if `discard`.
    void requestStop(bool discard) {
        if (discard) searcher.discardFlag = true;
        searcher.stopFlag = true;
    }

    Searcher searcher;

  protected:
    void onIdle() override {
        if (index == 0 && engine) engine->searchEnded();
    }

  private:
    EngineInterface* engine;
};

}  // namespace vatro
