// The child sends its model, or the reason for none, through a pipe.
#include "viewer/readers/apart.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <new>
#include <type_traits>

namespace nruview::readers {

namespace {

constexpr char kDone = 'm', kRefused = 'r'; ///< first byte of what the child sends
constexpr rlim_t kSpareMemory = rlim_t{1} << 30, kMemoryPerByte = 200;
constexpr rlim_t kSpareSeconds = 20, kBytesPerSecond = 1 << 20;

// --- a model as bytes --------------------------------------------------------------------------------------

class Writer {
public:
    explicit Writer(std::string& bytes) : m_bytes(bytes) {}

    template <typename Value>
    void put(const Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        m_bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void put(const std::string& text) { putAll(text); }
    template <typename Value>
    void put(const std::vector<Value>& values) {
        putAll(values);
    }
    void put(const ModelPart& part) {
        put(part.name);
        put(part.firstCell);
        put(part.cellCount);
        put(part.color);
        put(part.opacity);
    }

private:
    template <typename Values>
    void putAll(const Values& values) {
        put(values.size());
        if constexpr (std::is_trivially_copyable_v<typename Values::value_type>)
            m_bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(values[0]));
        else
            for (const auto& value : values)
                put(value);
    }

    std::string& m_bytes;
};

class Reader {
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    template <typename Value>
    void get(Value& value) {
        static_assert(std::is_trivially_copyable_v<Value>);
        copy(&value, sizeof value);
    }
    void get(std::string& text) { getAll(text); }
    template <typename Value>
    void get(std::vector<Value>& values) {
        getAll(values);
    }
    void get(ModelPart& part) {
        get(part.name);
        get(part.firstCell);
        get(part.cellCount);
        get(part.color);
        get(part.opacity);
    }

private:
    template <typename Values>
    void getAll(Values& values) {
        std::size_t count = 0;
        get(count);
        if (count > m_bytes.size())
            throw Refusal("cannot be read: the reader has failed on it");
        values.resize(count);
        if constexpr (std::is_trivially_copyable_v<typename Values::value_type>)
            copy(values.data(), count * sizeof(values[0]));
        else
            for (auto& value : values)
                get(value);
    }
    void copy(void* target, std::size_t size) {
        if (size > m_bytes.size())
            throw Refusal("cannot be read: the reader has failed on it");
        m_bytes.copy(static_cast<char*>(target), size);
        m_bytes.remove_prefix(size);
    }

    std::string_view m_bytes;
};

/// Gives or takes all members but the fields, in one order.
template <typename Stream>
void forEachMember(Stream stream, auto& model) {
    stream(model.nodes);
    stream(model.types);
    stream(model.offsets);
    stream(model.connectivity);
    stream(model.parts);
    stream(model.isSurface);
    stream(model.cornerNormals);
    stream(model.notes);
}

// --- the child ---------------------------------------------------------------------------------------------

/// Address space that the process has already; sanitizers have reserved terabytes.
rlim_t usedMemory() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void limit(int resource, rlim_t value) {
    const rlimit both = {value, value};
    setrlimit(static_cast<decltype(RLIMIT_AS)>(resource), &both);
}

/// What a failing reader prints is not for the user, who gets one line from the parent.
void limitChild(std::size_t fileSize) {
    limit(RLIMIT_AS, usedMemory() + kSpareMemory + kMemoryPerByte * fileSize);
    limit(RLIMIT_CPU, kSpareSeconds + fileSize / kBytesPerSecond);
    limit(RLIMIT_CORE, 0);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    dup2(nowhere, STDOUT_FILENO);
}

std::string resultOf(const std::function<Model()>& read) {
    try {
        const Model model = read();
        std::string bytes(1, kDone);
        forEachMember([writer = Writer(bytes)](const auto& member) mutable { writer.put(member); }, model);
        return bytes;
    } catch (const Refusal& refusal) {
        return kRefused + std::string(refusal.what());
    } catch (const std::bad_alloc&) {
        return kRefused + std::string("needs more memory than a file of its size should");
    }
}

[[noreturn]] void runChild(const std::function<Model()>& read, std::size_t fileSize, int pipe) {
    limitChild(fileSize);
    const std::string bytes = resultOf(read);
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = write(pipe, bytes.data() + sent, bytes.size() - sent);
        if (count < 0 && errno != EINTR)
            _exit(1);
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    _exit(0); // nothing that belongs to the parent is flushed or destroyed here
}

// --- the parent --------------------------------------------------------------------------------------------

std::string receive(int pipe) {
    std::string bytes;
    std::vector<char> buffer(1 << 20);
    for (;;) {
        const ssize_t count = read(pipe, buffer.data(), buffer.size());
        if (count > 0)
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return bytes;
    }
}

int waitFor(pid_t child) {
    int status = -1;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        ;
    return status;
}

Model modelOf(const std::string& bytes, int status) {
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU)
        throw Refusal("takes longer to read than a file of its size should");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || bytes.empty())
        throw Refusal("cannot be read: the reader has failed on it");
    if (bytes[0] != kDone)
        throw Refusal(bytes.substr(1));
    Model model;
    Reader reader(std::string_view(bytes).substr(1));
    forEachMember([&](auto& member) { reader.get(member); }, model);
    return model;
}

} // namespace

Model readApart(const std::function<Model()>& read, std::size_t fileSize) {
    int ends[2];
    if (pipe(ends) != 0)
        throw Refusal("cannot be read: no pipe can be made");
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        runChild(read, fileSize, ends[1]);
    }
    close(ends[1]);
    const std::string bytes = child > 0 ? receive(ends[0]) : "";
    close(ends[0]);
    if (child < 0)
        throw Refusal("cannot be read: no process can be started");
    return modelOf(bytes, waitFor(child));
}

} // namespace nruview::readers
