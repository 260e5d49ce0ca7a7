#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace cli {

// Does tasks 0 .. count - 1 in as many processes as this machine has processors, each task in one of them, and returns
// when all are done. A task owns what this process has as a copy: only what it writes to files stays. Files that this
// process has staged stay its own.
//
//   task   throws Error for what the operator got wrong; then no more tasks begin, and the Error comes out of here.
//   Lack
//          of memory comes out as std::bad_alloc, anything else as std::runtime_error
//   done   called here with the number of finished tasks; what it throws ends all workers and comes out of here
//
// No other thread of this process may be running.
void RunInProcesses(std::size_t count, const std::function<void(std::size_t index)>& task,
                    const std::function<void(std::size_t finished)>& done);

}  // namespace cli
