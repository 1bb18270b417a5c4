// Tasks.cpp: background work on a small pool of threads.
//
// Threads are started as tasks come in, up to a few, and then wait for more. When the process exits
// (or the library is unloaded) the pool lets the tasks that run end, never begins those that wait,
// and joins its threads, so that none is left to run code or use data that is going away. Tasks
// that wait stay in the list with what they were given: nobody else knows how to let go of that,
// and leak checkers see whose it is.

#include <Host/Host.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

struct Task {
    void (*function)(void* context);
    void* context;
    Task* next;
};

class Pool {
public:
    Pool() = default;
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    bool submit(void (*function)(void* context), void* context);
    void waitForAll();

private:
    static constexpr std::size_t kMostThreads = 4;

    static void* runThread(void* pool);
    void work();
    bool startThreadIfUseful();
    Task* takeFirst();

    // Guards everything below. wake_: there is a task, or the end. idle_: nothing is left to do.
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t wake_ = PTHREAD_COND_INITIALIZER;
    pthread_cond_t idle_ = PTHREAD_COND_INITIALIZER;
    std::array<pthread_t, kMostThreads> threads_ = {};
    std::size_t threadCount_ = 0;
    std::size_t waitingThreads_ = 0;
    std::size_t unfinished_ = 0;
    Task* first_ = nullptr;
    Task* last_ = nullptr;
    bool ending_ = false;
    const pid_t process_ = getpid();
};

class Lock {
public:
    explicit Lock(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
    ~Lock() { pthread_mutex_unlock(&mutex_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    pthread_mutex_t& mutex_;
};

std::size_t processorCount() {
    return static_cast<std::size_t>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
}

Pool::~Pool() {
    // A forked process has the pool's memory but none of its threads.
    if (process_ != getpid())
        return;
    {
        const Lock hold(mutex_);
        ending_ = true;
        pthread_cond_broadcast(&wake_);
    }
    for (std::size_t i = 0; i < threadCount_; ++i)
        pthread_join(threads_[i], nullptr);
}

bool Pool::submit(void (*function)(void* context), void* context) {
    auto* const task = static_cast<Task*>(std::malloc(sizeof(Task)));
    if (!task)
        return false;
    *task = {function, context, nullptr};

    const Lock hold(mutex_);
    if (ending_ || !startThreadIfUseful()) {
        std::free(task);
        return false;
    }
    (last_ ? last_->next : first_) = task;
    last_ = task;
    ++unfinished_;
    pthread_cond_signal(&wake_);
    return true;
}

void Pool::waitForAll() {
    const Lock hold(mutex_);
    while (unfinished_ > 0)
        pthread_cond_wait(&idle_, &mutex_);
}

// Whether there is at least one thread to run a further task.
bool Pool::startThreadIfUseful() {
    const bool enough = waitingThreads_ > 0 && !first_;
    if (!enough && threadCount_ < std::min(kMostThreads, processorCount()) &&
        pthread_create(&threads_[threadCount_], nullptr, runThread, this) == 0)
        ++threadCount_;
    return threadCount_ > 0;
}

Task* Pool::takeFirst() {
    Task* const task = first_;
    if (task) {
        first_ = task->next;
        if (!first_)
            last_ = nullptr;
    }
    return task;
}

void* Pool::runThread(void* pool) {
    static_cast<Pool*>(pool)->work();
    return nullptr;
}

void Pool::work() {
    pthread_mutex_lock(&mutex_);
    while (!ending_) {
        Task* const task = takeFirst();
        if (!task) {
            ++waitingThreads_;
            pthread_cond_wait(&wake_, &mutex_);
            --waitingThreads_;
            continue;
        }
        pthread_mutex_unlock(&mutex_);
        task->function(task->context);
        std::free(task);
        pthread_mutex_lock(&mutex_);
        if (--unfinished_ == 0)
            pthread_cond_broadcast(&idle_);
    }
    pthread_mutex_unlock(&mutex_);
}

Pool& sharedPool() {
    static Pool pool;
    return pool;
}

} // namespace

bool HostTaskSubmit(void (*function)(void* context), void* context) {
    return function && sharedPool().submit(function, context);
}

void HostTaskWaitForAll(void) {
    sharedPool().waitForAll();
}
