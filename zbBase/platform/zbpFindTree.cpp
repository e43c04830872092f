#include "zbBase/platform/detail/zbpFindTree.h"

#include "zbBase/platform/detail/zbpFind.h"

#include <errno.h>
#include <string.h>
#include <string>

#if !defined(_WIN32)
#include "zbBase/platform/detail/zbpPath.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <stdint.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zbp {

namespace {

const size_t kEntryLimit = 259;  // a stored full path
const size_t kFolderLimit = 511; // a folder entered, closing backslash included

bool wanted(const TreeSearch& how, bool isFolder, const char* name) {
    return how.folders ? isFolder && name[0] != '.' : !isFolder;
}

} // namespace

#if defined(_WIN32)

namespace {

// The walk of the runtime's listings: one listing of the pattern, one of "*.*" for the
// subfolders, in each folder.
class TreeWalk {
public:
    TreeWalk(const char* pattern, const TreeSearch& how, std::vector<__finddata64_t>& found,
             int& folderCount)
        : m_pattern(pattern), m_how(how), m_found(found), m_folderCount(folderCount) {}

    // Stores the matches of `folder`; whether its listing found anything.
    bool collect(const std::string& folder) {
        std::string search = folder + m_pattern;
        __finddata64_t data;
        intptr_t handle = _findfirst64(search.c_str(), &data);
        if (handle == -1) {
            return false;
        }
        do {
            bool isFolder = (data.attrib & _A_SUBDIR) != 0;
            size_t length = strlen(data.name);
            if (wanted(m_how, isFolder, data.name) && folder.size() + length <= kEntryLimit) {
                m_found.push_back(data);
                __finddata64_t& entry = m_found.back();
                memcpy(entry.name, folder.data(), folder.size());
                memcpy(entry.name + folder.size(), data.name, length + 1);
            }
        } while (_findnext64(handle, &data) == 0);
        _findclose(handle);
        return true;
    }

    // Enters every subfolder of `folder` whose name does not begin with a dot.
    void descend(const std::string& folder) {
        std::string search = folder + "*.*";
        __finddata64_t data;
        intptr_t handle = _findfirst64(search.c_str(), &data);
        if (handle == -1) {
            return;
        }
        do {
            if ((data.attrib & _A_SUBDIR) == 0 || data.name[0] == '.') {
                continue;
            }
            std::string sub = folder + data.name + "\\";
            if (sub.size() > kFolderLimit) {
                continue;
            }
            ++m_folderCount;
            collect(sub);
            descend(sub);
        } while (_findnext64(handle, &data) == 0);
        _findclose(handle);
    }

private:
    const char* m_pattern;
    const TreeSearch& m_how;
    std::vector<__finddata64_t>& m_found;
    int& m_folderCount;
};

} // namespace

int searchTree(const char* folder, const char* pattern, const TreeSearch& how,
               std::vector<__finddata64_t>& found, int& folderCount) {
    if (folder == nullptr || pattern == nullptr) {
        return EINVAL;
    }
    TreeWalk walk(pattern, how, found, folderCount);
    if (how.countStart) {
        ++folderCount;
    }
    if (walk.collect(folder) && !how.countStart) {
        ++folderCount;
    }
    if (how.recurse) {
        walk.descend(folder);
    }
    return errno;
}

#else

namespace {

const int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

enum EntryType : unsigned char { kUnknown, kFolder, kOther };

// One entry of a folder being walked: its name in the name store.
struct Item {
    uint32_t offset;
    uint32_t length;
    EntryType type;
};

EntryType typeOf(mode_t mode) {
    return S_ISDIR(mode) ? kFolder : kOther;
}

class TreeWalk {
public:
    TreeWalk(const char* pattern, const TreeSearch& how, std::vector<__finddata64_t>& found,
             int& folderCount)
        : m_pattern(pattern), m_how(how), m_found(found), m_folderCount(folderCount) {}

    int run(const char* folder) {
        m_path = folder;
        std::string native = toNativePath(folder);
        if (native.empty()) {
            native = ".";
        }
        m_root = native.find_first_not_of('/') == std::string::npos;
        if (m_how.countStart) {
            ++m_folderCount;
        }
        if (m_pattern[0] == '\0' && !m_how.recurse) {
            return ENOENT; // an empty pattern lists nothing
        }
        int fd = open(native.c_str(), kFolderFlags);
        if (fd < 0) {
            return errno == ENOTDIR ? ENOENT : errno;
        }
        visit(fd, true);
        return ENOENT;
    }

private:
    const char* name(const Item& item) const { return m_names.data() + item.offset; }

    // Appends the entries of the open folder, "." and ".." left out, to the stores.
    void read(int fd) {
#if defined(__linux__) && defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 30)
        if (m_buffer.empty()) {
            m_buffer.resize(32768);
        }
        for (;;) {
            ssize_t n = getdents64(fd, m_buffer.data(), m_buffer.size());
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n <= 0) {
                return;
            }
            for (ssize_t at = 0; at < n;) {
                const struct dirent64* entry =
                    reinterpret_cast<const struct dirent64*>(m_buffer.data() + at);
                at += entry->d_reclen;
                add(entry->d_name, entry->d_type);
            }
        }
#else
        int copy = dup(fd);
        DIR* dir = copy < 0 ? nullptr : fdopendir(copy);
        if (dir == nullptr) {
            if (copy >= 0) {
                close(copy);
            }
            return;
        }
        while (struct dirent* entry = readdir(dir)) {
#if defined(DT_UNKNOWN)
            add(entry->d_name, entry->d_type);
#else
            add(entry->d_name, 0);
#endif
        }
        closedir(dir);
#endif
    }

    void add(const char* entryName, unsigned char entryType) {
        if (entryName[0] == '.' &&
            (entryName[1] == '\0' || (entryName[1] == '.' && entryName[2] == '\0'))) {
            return;
        }
        size_t length = strlen(entryName);
        if (length >= MAX_PATH) {
            return;
        }
        EntryType type = kUnknown;
#if defined(DT_UNKNOWN)
        if (entryType == DT_DIR) {
            type = kFolder;
        } else if (entryType == DT_LNK || entryType == DT_REG || entryType == DT_FIFO ||
                   entryType == DT_SOCK || entryType == DT_CHR || entryType == DT_BLK) {
            type = kOther; // a link is listed as a plain entry and never entered
        }
#else
        (void)entryType;
#endif
        Item item;
        item.offset = static_cast<uint32_t>(m_names.size());
        item.length = static_cast<uint32_t>(length);
        item.type = type;
        m_names.insert(m_names.end(), entryName, entryName + length + 1);
        m_items.push_back(item);
    }

    // The entry's own status when its type is not known yet; false when it cannot be read.
    bool resolve(int fd, Item& item, struct stat& own, bool& haveOwn) {
        haveOwn = false;
        if (item.type != kUnknown) {
            return true;
        }
        if (fd < 0 || fstatat(fd, name(item), &own, AT_SYMLINK_NOFOLLOW) != 0) {
            return false;
        }
        haveOwn = true;
        item.type = typeOf(own.st_mode);
        return true;
    }

    void store(const Item& item, const EntryRecord& record) {
        m_found.emplace_back();
        __finddata64_t& entry = m_found.back();
        entry.attrib = record.attrib;
        entry.time_create = static_cast<__time64_t>(record.created.tv_sec);
        entry.time_access = static_cast<__time64_t>(record.accessed.tv_sec);
        entry.time_write = static_cast<__time64_t>(record.written.tv_sec);
        entry.size = static_cast<__int64>(record.size);
        memcpy(entry.name, m_path.data(), m_path.size());
        memcpy(entry.name + m_path.size(), name(item), item.length + 1);
    }

    // Stores the matches of the open folder `fd` (whose path is m_path), then walks its
    // subfolders. Closes `fd`.
    void visit(int fd, bool start) {
        const size_t firstItem = m_items.size();
        const size_t firstName = m_names.size();
        read(fd);
        std::sort(m_items.begin() + static_cast<std::ptrdiff_t>(firstItem), m_items.end(),
                  [this](const Item& a, const Item& b) {
                      return listingBefore(name(a), a.length, name(b), b.length, m_upper);
                  });
        const size_t lastItem = m_items.size();

        bool found =
            start && !m_root &&
            (matchWildcard(m_pattern, ".", m_upper) || matchWildcard(m_pattern, "..", m_upper));
        for (size_t i = firstItem; i < lastItem; ++i) {
            Item& item = m_items[i];
            if (!matchWildcard(m_pattern, name(item), m_upper)) {
                continue;
            }
            struct stat own;
            bool haveOwn;
            if (!resolve(fd, item, own, haveOwn)) {
                continue;
            }
            if (!wanted(m_how, item.type == kFolder, name(item)) ||
                m_path.size() + item.length > kEntryLimit) {
                found = true;
                continue;
            }
            EntryRecord record;
            if (describeEntry(fd, name(item), haveOwn ? &own : nullptr, record)) {
                found = true;
                store(item, record);
            }
        }
        if (start && found && !m_how.countStart) {
            ++m_folderCount;
        }

        if (m_how.recurse) {
            const size_t pathLength = m_path.size();
            for (size_t i = firstItem; i < lastItem; ++i) {
                struct stat own;
                bool haveOwn;
                if (!resolve(fd, m_items[i], own, haveOwn)) {
                    continue;
                }
                const Item item = m_items[i]; // the stores grow below: keep no reference
                if (item.type != kFolder || name(item)[0] == '.' ||
                    pathLength + item.length + 1 > kFolderLimit) {
                    continue;
                }
                ++m_folderCount;
                m_path.append(name(item), item.length);
                m_path += '\\';
                int sub = enter(fd, item);
                if (sub >= 0) {
                    visit(sub, false);
                }
                m_path.resize(pathLength);
                if (fd < 0) {
                    // Given up for the subfolder: taken up again for the next one.
                    fd = open(toNativePath(m_path.c_str()).c_str(), kFolderFlags);
                }
            }
        }
        if (fd >= 0) {
            close(fd);
        }
        m_items.resize(firstItem);
        m_names.resize(firstName);
    }

    // Opens the subfolder `item` of `fd`, whose path is now m_path; never through a link.
    // Out of descriptors, the folder's own descriptor is given up (fd becomes -1) and the
    // subfolder opened by its full path.
    int enter(int& fd, const Item& item) {
        if (fd >= 0) {
            int sub = openat(fd, name(item), kFolderFlags | O_NOFOLLOW);
            if (sub >= 0 || (errno != EMFILE && errno != ENFILE)) {
                return sub;
            }
            close(fd);
            fd = -1;
        }
        std::string native = toNativePath(m_path.c_str());
        native.pop_back();
        return open(native.c_str(), kFolderFlags | O_NOFOLLOW);
    }

    const char* m_pattern;
    const TreeSearch& m_how;
    std::vector<__finddata64_t>& m_found;
    int& m_folderCount;
    UpperCase m_upper;
    bool m_root = false;
    std::string m_path;         // the folder being visited, library text with closing backslash
    std::vector<char> m_names;  // names of the folders on the way down, each NUL-terminated
    std::vector<Item> m_items;  // their entries, folder after folder
    std::vector<char> m_buffer; // raw directory entries
};

} // namespace

int searchTree(const char* folder, const char* pattern, const TreeSearch& how,
               std::vector<__finddata64_t>& found, int& folderCount) {
    if (folder == nullptr || pattern == nullptr) {
        return EINVAL;
    }
    TreeWalk walk(pattern, how, found, folderCount);
    return walk.run(folder);
}

#endif

} // namespace zbp
