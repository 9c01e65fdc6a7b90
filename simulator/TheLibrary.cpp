#include "simulator/Library.h"

/// One for the process, never destroyed: a host may close its handles as late as when its own static objects
/// go.
acgreader::ReaderLibrary& acgreader::TheLibrary()
{
    static auto& library = *new simulator::Library;
    return library.Answering();
}
