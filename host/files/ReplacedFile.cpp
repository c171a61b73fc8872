#include "host/files/ReplacedFile.h"

#include "host/files/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <optional>
#include <system_error>

namespace host {

namespace {

constexpr mode_t readableByAll = 0666; // as far as the umask lets it be
constexpr mode_t permissions = 07777;

int writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return fsync(file) == 0 ? 0 : errno;
}

// The file itself, where path is a link.
std::filesystem::path targetOf(const std::filesystem::path& path) {
    std::error_code error;
    auto target = std::filesystem::canonical(path, error);
    return error ? path : target;
}

// The file that is written beside the target; gone in the end unless it has got the target's name.
class Beside {
public:
    Beside(const std::filesystem::path& target, mode_t mode) : m_target(target) {
        static std::atomic<unsigned> count{0};
        const std::string name =
            "." + target.filename().string() + "." + std::to_string(getpid()) + "-" + std::to_string(++count) + "~";
        m_path = target.parent_path() / name;
        m_file = Descriptor(open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
        m_error = m_file.number() < 0 ? errno : 0;
    }
    ~Beside() {
        if (m_file.number() >= 0 && !m_renamed) {
            unlink(m_path.c_str());
        }
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;

    int error() const { return m_error; }

    void setPermissions(mode_t mode) { setError(fchmod(m_file.number(), mode)); }

    void keepOwner(const struct stat& old) {
        // Whoever may not give files away goes on with one of his own.
        static_cast<void>(fchown(m_file.number(), old.st_uid, old.st_gid) == 0);
    }

    void write(std::string_view bytes) {
        if (m_error == 0) {
            m_error = writeAll(m_file.number(), bytes);
        }
    }

    void rename() {
        if (m_error == 0) {
            setError(::rename(m_path.c_str(), m_target.c_str()));
            m_renamed = m_error == 0;
        }
    }

private:
    void setError(int result) { m_error = m_error != 0 || result == 0 ? m_error : errno; }

    const std::filesystem::path& m_target;
    std::filesystem::path m_path;
    Descriptor m_file;
    int m_error = 0;
    bool m_renamed = false;
};

// 0, or the reason as errno has it.
int replace(const std::filesystem::path& target, std::string_view bytes, std::optional<mode_t> mode) {
    struct stat old {};
    const bool isThere = stat(target.c_str(), &old) == 0;
    Beside beside(target, mode.value_or(readableByAll));
    if (beside.error() == 0 && isThere) {
        beside.keepOwner(old);
        beside.setPermissions(old.st_mode & permissions);
    }
    beside.write(bytes);
    beside.rename();
    if (beside.error() == 0) {
        // That the new name outlives a loss of power, too; without it the old file would come back, whole as well.
        const auto folder = target.has_parent_path() ? target.parent_path() : ".";
        static_cast<void>(fsync(Descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)).number()) == 0);
    }
    return beside.error();
}

bool replaceWith(const std::filesystem::path& path, std::string_view bytes, std::optional<mode_t> mode,
                 std::string& error) {
    const int code = replace(targetOf(path), bytes, mode);
    if (code != 0) {
        error = path.string() + ": cannot be written (" + std::generic_category().message(code) +
                "); check the folder's permissions and the space that is left";
    }
    return code == 0;
}

} // namespace

bool replaceFile(const std::filesystem::path& path, std::string_view bytes, std::string& error) {
    return replaceWith(path, bytes, std::nullopt, error);
}

bool replaceFile(const std::filesystem::path& path, std::string_view bytes, unsigned mode, std::string& error) {
    return replaceWith(path, bytes, mode, error);
}

} // namespace host
