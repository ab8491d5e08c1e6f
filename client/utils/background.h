#pragma once

namespace utils {

/// The calling thread gives way to the GUI thread from now on when there are more threads than cores. For the threads
/// that do the client's work away from windows; asking again costs nothing.
void workInBackground();

}  // namespace utils
