// A program to be started: leaves in the file $LAUNCH_RECORD its own path, how many words its
// command line has, and its current folder, a line each.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

int main(int argc, char**)
{
    const char* record = std::getenv("LAUNCH_RECORD");
    if (!record)
        return EXIT_FAILURE;
    // The file appears with all of its content at once.
    const std::string part = std::string(record) + ".part";
    std::ofstream(part) << std::filesystem::read_symlink("/proc/self/exe").string() << '\n'
                        << argc << '\n'
                        << std::filesystem::current_path().string() << '\n';
    return std::rename(part.c_str(), record) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
