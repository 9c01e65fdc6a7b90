// What ends the process if an exception ever had nowhere to go. The runtime's own handler prints the
// exception's name first: the host has no use for that, and it would make the DLL larger by a sixth.
#include <cstdlib>
#include <exception>

void __gnu_cxx::__verbose_terminate_handler()
{
    std::abort();
}
