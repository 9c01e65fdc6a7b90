// Binding a library of the system at run time.
#pragma once

#include <atomic>
#include <cstdint>

namespace acg
{

/// The result of looking a function up in a library.
struct EntryPoint {
    using Function = void (*)();

    Function Address = nullptr; ///< null if nothing was found
    bool LibraryLoaded = false; ///< true if only the function is missing
    int32_t SystemError = 0;    ///< the loader's error code if nothing was found, else 0
};

/// One library, loaded at the first look-up and kept until the process ends.
///
/// It is searched in the folder of the component itself, then in the folders that the system searches by
/// default, never in the current directory. A failed look-up can be repeated: it finds a library that was
/// installed meanwhile. Look-ups from several threads are safe.
class Library
{
public:
    /// Name: without folder, prefix and ending, as in "ACGReader330".
    explicit constexpr Library(const char* name) : m_name(name) {}

    [[nodiscard]] EntryPoint Find(const char* function);

private:
    const char* m_name;
    std::atomic<void*> m_handle = nullptr;
};

} // namespace acg
