#pragma once

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto::test {

inline void MakePipe(const std::string& path) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0) << path;
}

/// Ends the program when something takes longer than half a minute in its life: whoever opens a
/// pipe that nobody writes to waits for ever.
class EndsSoon {
  public:
    EndsSoon() { alarm(30); }
    ~EndsSoon() { alarm(0); }
    EndsSoon(const EndsSoon&) = delete;
    EndsSoon& operator=(const EndsSoon&) = delete;
};

} // namespace zelto::test
