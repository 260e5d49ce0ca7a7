#pragma once

namespace cli {

// How a program ends that has run out of memory: with one line and this code. Nothing here allocates.
//
// Where the lack is met by no handler - before main, on a worker, in a destructor - the process says the same line and
// ends with the same code, from the time that the program is loaded on.
constexpr int exitNoMemory = 3;

// Says "PROGRAM: there is not enough memory" on standard error and answers exitNoMemory.
int ComplainOfMemory() noexcept;

}  // namespace cli
