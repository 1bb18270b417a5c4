/* Host.h: everything that the libraries ask of the machine beneath them.
 *
 * This header is the whole porting surface: a new host supplies these functions and nothing else.
 * Paths are UTF-8 C strings. Every pointer argument may be NULL; a call that cannot do its work
 * answers false, 0, -1 or NULL, as stated, and never aborts unless it says so. All functions may be
 * called from any thread. */
#pragma once

#include <pthread.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__cplusplus)
#define HOST_BEGIN_DECLS extern "C" {
#define HOST_END_DECLS }
#define HOST_NORETURN [[noreturn]]
#else
#define HOST_BEGIN_DECLS
#define HOST_END_DECLS
#define HOST_NORETURN __attribute__((noreturn))
#endif

#define HOST_EXPORT extern __attribute__((visibility("default")))
#define HOST_PRINTF(position, first) __attribute__((format(printf, position, first)))

/* An enumeration of which every int is a value: a wild number from a caller is only wrong. */
#if defined(__cplusplus)
#define HOST_ENUM(name) enum name : int
#else
#define HOST_ENUM(name) enum name
#endif

HOST_BEGIN_DECLS

/* ---- Locks ------------------------------------------------------------------------------- */

typedef pthread_mutex_t HostMutex;

typedef HOST_ENUM(HostMutexKind) {
    kHostMutexPlain = 0,     /**< A second lock by the owner deadlocks. */
    kHostMutexRecursive = 1, /**< The owner may lock again, and unlocks as often. */
} HostMutexKind;

/** Prepares `mutex`. False when the host has no room for another lock. */
HOST_EXPORT bool HostMutexInitialize(HostMutex* mutex, HostMutexKind kind);
/** Frees what an unlocked `mutex` holds. */
HOST_EXPORT void HostMutexDestroy(HostMutex* mutex);
HOST_EXPORT void HostMutexLock(HostMutex* mutex);
/** Whether the lock was free (or, of a recursive one, already ours) and is now held. */
HOST_EXPORT bool HostMutexTryLock(HostMutex* mutex);
HOST_EXPORT void HostMutexUnlock(HostMutex* mutex);

/* ---- Once-only guard --------------------------------------------------------------------- */

/** Zero-initialise it, with static storage or inside a record. */
typedef struct HostOnce {
    uint32_t state;
} HostOnce;

#define HOST_ONCE_INIT {0}

/** Runs `function(context)` the first time only. Whoever comes meanwhile waits for it to end, so
 *  that its effects are visible to every caller on return. It must not enter the same guard. */
HOST_EXPORT void HostOnceRun(HostOnce* once, void (*function)(void* context), void* context);

/* ---- Background tasks -------------------------------------------------------------------- */

/** Runs `function(context)` on a thread of the shared pool, in no order that may be relied on.
 *  False, and nothing runs, when no thread or memory is to be had. Exit waits for the tasks that
 *  run; those that have not begun by then never do. */
HOST_EXPORT bool HostTaskSubmit(void (*function)(void* context), void* context);
/** Waits until every task submitted so far has ended. Not to be called from a task. */
HOST_EXPORT void HostTaskWaitForAll(void);

/* ---- Log --------------------------------------------------------------------------------- */

typedef HOST_ENUM(HostLogLevel) {
    kHostLogFault = 2, /**< Always printed, then the process aborts with a backtrace. */
    kHostLogError = 3,
    kHostLogWarning = 4,
    kHostLogNotice = 5,
    kHostLogInfo = 6,
    kHostLogDebug = 7,
} HostLogLevel;

typedef void (*HostLogSink)(HostLogLevel level, const char* category, const char* function,
                            const char* text, void* context);

/** Whether a message of `level` would be printed: test it before forming one. The threshold is the
 *  environment variable NIMBRA_LOG_LEVEL, else 3 (errors). */
HOST_EXPORT bool HostLogIsEnabled(HostLogLevel level);
/** Sets the threshold for the rest of the process; faults are printed whatever it is. */
HOST_EXPORT void HostLogSetThreshold(HostLogLevel level);
/** Sends messages to `sink` instead of stderr; NULL restores stderr ("[level] category function:
 *  text"). Faults reach the sink, then abort. */
HOST_EXPORT void HostLogSetSink(HostLogSink sink, void* context);
/** Logs a finished text. Level 2 aborts with a backtrace once the text is out. */
HOST_EXPORT void HostLogText(HostLogLevel level, const char* category, const char* function,
                             const char* text);
/** HostLogText with a printf format. */
HOST_EXPORT void HostLog(HostLogLevel level, const char* category, const char* function,
                         const char* format, ...) HOST_PRINTF(4, 5);

/** Prints the calling thread's backtrace on stderr and aborts the process. */
HOST_NORETURN HOST_EXPORT void HostAbortWithBacktrace(void);

/* ---- Symbols ----------------------------------------------------------------------------- */

/** The function or variable of that name in the program or a library it has loaded, else NULL. */
HOST_EXPORT void* HostSymbolFind(const char* name);

/* ---- Runtime options --------------------------------------------------------------------- */

typedef HOST_ENUM(HostOptionKind) {
    kHostOptionBoolean = 0,
    kHostOptionInteger = 1,
} HostOptionKind;

/** A switch that users may set from the environment; the texts live as long as the process. */
typedef struct HostOption {
    const char* name; /**< Also the environment variable that sets it. */
    const char* title;
    const char* category;
    const char* description;
    HostOptionKind kind;
    void* bound; /**< `bool*` or `int32_t*`: where readers find the value. */
} HostOption;

/** Enters `option` in the registry and sets its bound value from the environment: booleans read
 *  "0", "no", "false", "off" and "1", "yes", "true", "on"; integers are read by `strtol` and
 *  clamped to 32 bits; anything else leaves the initial value. Registering a name again changes
 *  nothing and answers false. */
HOST_EXPORT bool HostOptionRegister(const HostOption* option);
/** How many options are registered. */
HOST_EXPORT size_t HostOptionGetCount(void);
/** Copies the option at `index`, in order of registration, into `option`; false past the end. */
HOST_EXPORT bool HostOptionGetAtIndex(size_t index, HostOption* option);
/** Sets a registered boolean option; false when there is none of that name and kind. */
HOST_EXPORT bool HostOptionSetBoolean(const char* name, bool value);
/** Sets a registered integer option; false when there is none of that name and kind. */
HOST_EXPORT bool HostOptionSetInteger(const char* name, int32_t value);
/** The 32-bit integer in the environment variable `name`, else `initial`. */
HOST_EXPORT int32_t HostOptionReadInteger(const char* name, int32_t initial);

/* ---- Files ------------------------------------------------------------------------------- */

/** A descriptor open for reading, closed on exec, or -1. */
HOST_EXPORT int HostFileOpenForReading(const char* path);
/** A descriptor open for writing to an emptied or new file, or -1. */
HOST_EXPORT int HostFileOpenForWriting(const char* path);
HOST_EXPORT void HostFileClose(int descriptor);
/** The size in bytes, or -1 when it is not a regular file. */
HOST_EXPORT int64_t HostFileGetSize(int descriptor);
/** Reads up to `size` bytes at `offset`, retrying after interruptions: the count, short only at the
 *  end of the file, or -1. */
HOST_EXPORT int64_t HostFileReadAt(int descriptor, void* buffer, size_t size, int64_t offset);
/** Reads up to `size` bytes from the current position: as HostFileReadAt. */
HOST_EXPORT int64_t HostFileRead(int descriptor, void* buffer, size_t size);
/** Writes all of `size` bytes at the current position; false when the host refuses some. */
HOST_EXPORT bool HostFileWrite(int descriptor, const void* bytes, size_t size);

/** A descriptor open for writing at the end of an existing or new file, whatever its position, or
 *  -1. */
HOST_EXPORT int HostFileOpenForAppending(const char* path);
/** Moves the current position to `offset` from the start; false for a pipe or a negative offset. */
HOST_EXPORT bool HostFileSetPosition(int descriptor, int64_t offset);
/** The current position, or -1 where there is none. */
HOST_EXPORT int64_t HostFileGetPosition(int descriptor);
/** Puts a file of `size` bytes in the place of the one at `path`, if any: readers see the old bytes
 *  or the new ones, also when the host fails in between. False leaves the old file. */
HOST_EXPORT bool HostFileReplace(const char* path, const void* bytes, size_t size);
/** Gives the file another name, in place of a file of that name. */
HOST_EXPORT bool HostFileRename(const char* path, const char* newPath);

/** A file's bytes in memory, read-only. */
typedef struct HostMapping {
    const void* bytes; /**< NULL for an empty file. */
    size_t size;
} HostMapping;

/** Maps a whole regular file; it may be closed afterwards. False leaves `mapping` empty. */
HOST_EXPORT bool HostFileMap(int descriptor, HostMapping* mapping);
/** Unmaps, and leaves `mapping` empty. */
HOST_EXPORT void HostFileUnmap(HostMapping* mapping);

/** Seconds since 1970 at which the file was last written; false when there is no such file. */
HOST_EXPORT bool HostFileGetModificationTime(const char* path, double* seconds);
HOST_EXPORT bool HostFileExists(const char* path);
HOST_EXPORT bool HostFileIsDirectory(const char* path);

/** Makes the folder and those above it that are missing; true when it is there in the end. */
HOST_EXPORT bool HostDirectoryCreate(const char* path);
/** Calls `function` with the name of each file and folder in the folder, in no order, but for "."
 *  and "..". False when it cannot be read to its end. */
HOST_EXPORT bool HostDirectoryEnumerate(const char* path,
                                        void (*function)(const char* name, void* context),
                                        void* context);

/** Joins two path parts with exactly one slash into `buffer`; an absolute `name` still follows
 *  `folder`. An empty `folder` adds nothing, so that a relative name stays one. False, with an
 *  empty buffer, when the result with its end mark does not fit. */
HOST_EXPORT bool HostPathConcatenate(const char* folder, const char* name, char* buffer,
                                     size_t capacity);
/** The file of the running program. False when it cannot be told or does not fit. */
HOST_EXPORT bool HostPathGetExecutable(char* buffer, size_t capacity);
/** The shared library (or program) that holds `address`. False when none does. */
HOST_EXPORT bool HostPathGetImageOfAddress(const void* address, char* buffer, size_t capacity);
/** The application's own folder for what can be made again, created when missing:
 *  $XDG_CACHE_HOME, else $HOME/.cache, followed by the program's name. */
HOST_EXPORT bool HostPathGetCachesDirectory(char* buffer, size_t capacity);
/** The user's folder for settings, created when missing: $XDG_CONFIG_HOME, else $HOME/.config. */
HOST_EXPORT bool HostPathGetPreferencesDirectory(char* buffer, size_t capacity);
/** The folder for settings of all users, which need not exist: the first of $XDG_CONFIG_DIRS, else
 *  /etc/xdg. */
HOST_EXPORT bool HostPathGetSystemPreferencesDirectory(char* buffer, size_t capacity);
/** The folder that relative paths start from. */
HOST_EXPORT bool HostPathGetWorkingDirectory(char* buffer, size_t capacity);
/** The machine's name on its network. */
HOST_EXPORT bool HostGetMachineName(char* buffer, size_t capacity);

/* ---- Shared libraries -------------------------------------------------------------------- */

/** Loads a shared library, or counts another user of one that is loaded; NULL as `path` stands for
 *  the program with all that it is linked to. A handle, or NULL. */
HOST_EXPORT void* HostLibraryOpen(const char* path);
/** Gives a handle up; with the last one the library is unloaded. */
HOST_EXPORT void HostLibraryClose(void* library);
/** The address of an exported name in the library or those that it is linked to, or NULL. */
HOST_EXPORT void* HostLibraryFindSymbol(void* library, const char* name);
/** What the loader said of the last call on this thread that failed, once: "" when asked again, or
 *  when none did. Good until the thread's next call. */
HOST_EXPORT const char* HostLibraryGetErrorText(void);

HOST_END_DECLS

#if defined(__cplusplus)

namespace host {

/** A mutex that lives in a record and locks for a scope: `const std::lock_guard hold(mutex_)`. */
template <HostMutexKind kind>
class BasicMutex {
public:
    BasicMutex() { HostMutexInitialize(&native_, kind); }
    ~BasicMutex() { HostMutexDestroy(&native_); }
    BasicMutex(const BasicMutex&) = delete;
    BasicMutex& operator=(const BasicMutex&) = delete;

    void lock() { HostMutexLock(&native_); }
    bool try_lock() { return HostMutexTryLock(&native_); }
    void unlock() { HostMutexUnlock(&native_); }

private:
    HostMutex native_;
};

using Mutex = BasicMutex<kHostMutexPlain>;
using RecursiveMutex = BasicMutex<kHostMutexRecursive>;

/** A descriptor that closes itself. */
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int native) : native_(native) {}
    ~Descriptor() { HostFileClose(native_); }
    Descriptor(Descriptor&& other) noexcept : native_(other.native_) { other.native_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept {
        const int mine = native_;
        native_ = other.native_;
        other.native_ = mine;
        return *this;
    }

    explicit operator bool() const { return native_ >= 0; }
    int get() const { return native_; }

private:
    int native_ = -1;
};

} // namespace host

#endif
