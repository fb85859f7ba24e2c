// A worker thread's run on the console: its progress as one line, cancelled by the interrupt key.
#pragma once

#include <exception>
#include <functional>

#include "core/workerthread.h"
#include "ui/console/console.h"
#include "ui/console/progressline.h"

namespace corvalt {

struct TWorkerEnd {
  std::exception_ptr Failure;  // what ended the worker early; null after a normal end
  bool Cancelled = false;      // by the interrupt key
};

// Runs a TThread, made of a context and the progress line, to its end or until the interrupt key cancels it.
// makeContext gets the end handler for the context; onEnd sees the thread before it goes. Quiet shows no
// progress.
template <typename TThread, typename TMakeContext>
TWorkerEnd RunWorker(TConsoleContext& context, bool quiet, TMakeContext makeContext,
                     const std::function<void(TThread&)>& onEnd = {}) {
  TProgressLine line(context.Console, quiet);
  TWorkerEnd end;
  TThread* worker = nullptr;
  const TWorkerThread::TEndHandler onFinished = [&](TWorkerThread& thread) {
    if (onEnd)
      onEnd(*worker);
    end.Failure = thread.FatalException();
    worker = nullptr;
  };
  const auto cancel = [&] {
    if (worker == nullptr)
      return;
    worker->Terminate();
    end.Cancelled = true;
  };
  worker = &TWorkerThread::Launch<TThread>(makeContext(onFinished), line);
  {
    const TInterruptHandler handler(context.Console, [&] { context.UiThread.Post(cancel); });
    context.UiThread.RunUntil([&worker] { return worker == nullptr; });
  }
  // An interrupt may have come when the worker had just ended.
  context.UiThread.RunPending();
  line.Clear();
  return end;
}

}  // namespace corvalt
