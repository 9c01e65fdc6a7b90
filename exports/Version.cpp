// What a library says of itself where files have no version resource.
extern "C" const char* ACGReaderLibraryVersion()
{
    return ACG_LIBRARY_VERSION;
}
