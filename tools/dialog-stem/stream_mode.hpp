#ifndef DIALOG_STEM_STREAM_MODE_HPP
#define DIALOG_STEM_STREAM_MODE_HPP

#include <string>

namespace ZQ::Dialog::tool {

// Runs the library's stream stemmer with the Snowball `algorithm` (UTF-8) over
// standard input and prints the joined stems and a newline. Returns the exit
// status: 0, or 2 with a one-line error for an unknown algorithm.
int runStreamMode(const std::string& algorithm);

}  // namespace ZQ::Dialog::tool

#endif  // DIALOG_STEM_STREAM_MODE_HPP
