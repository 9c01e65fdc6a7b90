// What a library says of itself if files have no version resource.
extern "C" const char* ACGReaderLibraryVersion()
{
    return ACG_LIBRARY_VERSION;
}
