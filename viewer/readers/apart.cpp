// The child sends its model, or the reason for none, through a pipe.
#include "viewer/readers/apart.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <concepts>
#include <csignal>
#include <fstream>
#include <new>
#include <type_traits>
#include <utility>

namespace nruview::readers {

namespace {

constexpr char kDone = 'm', kRefused = 'r'; ///< first byte of what the child sends
constexpr std::size_t kSpareMemory = std::size_t{1} << 30, kMemoryPerByte = 200;
constexpr rlim_t kSpareSeconds = 20, kBytesPerSecond = 1 << 20;
constexpr std::size_t kPipeSize = 1 << 20;
constexpr const char* kFailed = "cannot be read: the reader has failed on it";

// --- a model's way through the pipe ------------------------------------------------------------------------

template <typename Value, typename Record>
concept Is = std::same_as<std::remove_const_t<Value>, Record>;

void forEachMember(auto visit, Is<ModelPart> auto& part) {
    visit(part.name);
    visit(part.firstCell);
    visit(part.cellCount);
    visit(part.color);
    visit(part.opacity);
}

void forEachMember(auto visit, Is<Field> auto& field) {
    visit(field.name);
    visit(field.location);
    visit(field.components);
    visit(field.values);
    visit(field.step);
}

void forEachMember(auto visit, Is<ResultStep> auto& step) {
    visit(step.label);
    visit(step.value);
    visit(step.isMode);
}

void forEachMember(auto visit, Is<NodeSet> auto& set) {
    visit(set.name);
    visit(set.nodes);
}

void forEachMember(auto visit, Is<Model> auto& model) {
    visit(model.nodes);
    visit(model.types);
    visit(model.offsets);
    visit(model.connectivity);
    visit(model.fields);
    visit(model.steps);
    visit(model.nodeSets);
    visit(model.nodeNumbers);
    visit(model.cellNumbers);
    visit(model.isSurface);
    visit(model.parts);
    visit(model.cornerNormals);
    visit(model.notes);
}

template <typename Value>
constexpr bool kIsList = requires(Value value) {
    value.data();
};
template <typename Value>
constexpr bool kIsPlain = std::is_trivially_copyable_v<Value>;

/// Small values travel together, long lists straight from where they are.
class Sender {
public:
    explicit Sender(int pipe) : m_pipe(pipe) {}

    template <typename Value>
    void put(const Value& value) {
        if constexpr (kIsPlain<Value>)
            putBytes(&value, sizeof value);
        else if constexpr (kIsList<Value>)
            putList(value);
        else
            forEachMember([this](const auto& member) { this->put(member); }, value);
    }
    void finish() {
        send(m_waiting.data(), m_waiting.size());
        m_waiting.clear();
    }

private:
    template <typename List>
    void putList(const List& list) {
        put(list.size());
        if constexpr (kIsPlain<typename List::value_type>)
            putBytes(list.data(), list.size() * sizeof(typename List::value_type));
        else
            for (const auto& value : list)
                put(value);
    }
    void putBytes(const void* bytes, std::size_t size) {
        if (m_waiting.size() + size > kPipeSize)
            finish();
        if (size > kPipeSize)
            send(static_cast<const char*>(bytes), size);
        else
            m_waiting.append(static_cast<const char*>(bytes), size);
    }
    void send(const char* bytes, std::size_t size) {
        while (size > 0) {
            const ssize_t count = write(m_pipe, bytes, size);
            if (count < 0 && errno != EINTR)
                _exit(1);
            bytes += std::max<ssize_t>(count, 0);
            size -= static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
    }

    int m_pipe;
    std::string m_waiting;
};

/// Takes what a Sender gives. Its end may come at any place, and what a failing reader sent may be anything:
/// memory is laid out as bytes arrive.
class Receiver {
public:
    Receiver(int pipe, std::size_t most) : m_pipe(pipe), m_left(most) {}

    template <typename Value>
    void get(Value& value) {
        if constexpr (kIsPlain<Value>)
            getBytes(reinterpret_cast<char*>(&value), sizeof value);
        else if constexpr (kIsList<Value>)
            getList(value);
        else
            forEachMember([this](auto& member) { this->get(member); }, value);
    }

private:
    template <typename List>
    void getList(List& list) {
        using Value = typename List::value_type;
        std::size_t count = 0;
        get(count);
        if (count > m_left / sizeof(Value))
            throw Refusal(kFailed);
        list.clear();
        list.reserve(count);
        if constexpr (kIsPlain<Value>) {
            constexpr std::size_t kStep = kPipeSize / sizeof(Value);
            while (list.size() < count) {
                const std::size_t first = list.size();
                list.resize(first + std::min(count - first, kStep));
                getBytes(reinterpret_cast<char*>(list.data() + first), (list.size() - first) * sizeof(Value));
            }
        } else
            while (list.size() < count)
                get(list.emplace_back());
    }
    void getBytes(char* target, std::size_t size) {
        while (size > 0) {
            if (m_taken == m_here.size())
                fill();
            const std::size_t count = std::min(size, m_here.size() - m_taken);
            std::copy_n(m_here.data() + m_taken, count, target);
            m_taken += count;
            target += count;
            size -= count;
        }
    }
    void fill() {
        m_here.resize(kPipeSize);
        ssize_t count = -1;
        do
            count = read(m_pipe, m_here.data(), m_here.size());
        while (count < 0 && errno == EINTR);
        if (count <= 0 || static_cast<std::size_t>(count) > m_left)
            throw Refusal(kFailed);
        m_left -= static_cast<std::size_t>(count);
        m_here.resize(static_cast<std::size_t>(count));
        m_taken = 0;
    }

    int m_pipe;
    std::size_t m_left;
    std::string m_here;
    std::size_t m_taken = 0;
};

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
    limit(RLIMIT_AS, usedMemory() + memoryFor(fileSize));
    limit(RLIMIT_CPU, kSpareSeconds + fileSize / kBytesPerSecond);
    limit(RLIMIT_CORE, 0);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    dup2(nowhere, STDOUT_FILENO);
}

void sendResult(const std::function<Model()>& read, Sender& sender) {
    std::string reason;
    try {
        const Model model = read();
        sender.put(kDone);
        sender.put(model);
        return;
    } catch (const Refusal& refusal) {
        reason = refusal.what();
    } catch (const std::bad_alloc&) {
        reason = "needs more memory than a file of its size should";
    }
    sender.put(kRefused);
    sender.put(reason);
}

[[noreturn]] void runChild(const std::function<Model()>& read, std::size_t fileSize, int pipe) {
    limitChild(fileSize);
    Sender sender(pipe);
    sendResult(read, sender);
    sender.finish();
    _exit(0); // nothing that belongs to the parent is flushed or destroyed here
}

// --- the parent --------------------------------------------------------------------------------------------

/// The child and the pipe's end, until both are gone.
class Child {
public:
    Child(pid_t process, int pipe) : m_process(process), m_pipe(pipe) {}
    ~Child() { wait(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    int pipe() const { return m_pipe; }
    int wait() {
        if (m_pipe < 0)
            return m_status;
        close(std::exchange(m_pipe, -1));
        while (waitpid(m_process, &m_status, 0) < 0 && errno == EINTR)
            ;
        return m_status;
    }

private:
    pid_t m_process;
    int m_pipe;
    int m_status = -1;
};

Model modelOf(Child& child, std::size_t most) {
    char answer = 0;
    Model model;
    std::string reason;
    try {
        Receiver receiver(child.pipe(), most);
        receiver.get(answer);
        if (answer == kDone)
            receiver.get(model);
        else
            receiver.get(reason);
    } catch (const Refusal&) {
        answer = 0;
    }
    const int status = child.wait();
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU)
        throw Refusal("takes longer to read than a file of its size should");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || answer == 0)
        throw Refusal(kFailed);
    if (answer != kDone)
        throw Refusal(reason);
    return model;
}

} // namespace

std::size_t memoryFor(std::size_t fileSize) {
    return kSpareMemory + kMemoryPerByte * fileSize;
}

Model readApart(const std::function<Model()>& read, std::size_t fileSize) {
    int ends[2];
    if (pipe(ends) != 0)
        throw Refusal("cannot be read: no pipe can be made");
    fcntl(ends[0], F_SETPIPE_SZ, kPipeSize);
    const pid_t process = fork();
    if (process == 0) {
        close(ends[0]);
        runChild(read, fileSize, ends[1]);
    }
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        throw Refusal("cannot be read: no process can be started");
    }
    Child child(process, ends[0]);
    return modelOf(child, memoryFor(fileSize));
}

} // namespace nruview::readers
