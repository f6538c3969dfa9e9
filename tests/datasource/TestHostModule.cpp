// A stand-in for the host application's module; only its file name and place matter.
extern "C" int HostModuleIsLoaded() {
    return 1;
}
