#pragma once

#include <filesystem>
#include <sys/mount.h>

namespace zelto::test {

/// A file system of one megabyte, where this user may mount one.
class SmallDisk {
  public:
    explicit SmallDisk(const std::filesystem::path& place) : m_place(place) {
        std::filesystem::create_directory(place);
        m_mounted = mount("tmpfs", place.c_str(), "tmpfs", 0, "size=1m") == 0;
    }
    ~SmallDisk() {
        if (m_mounted)
            umount(m_place.c_str());
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool IsMounted() const { return m_mounted; }

  private:
    std::filesystem::path m_place;
    bool m_mounted = false;
};

} // namespace zelto::test
