// Reads a file line by line, and reports a failed reading in words from an error list, as a host
// with messages of its own does.
//
//     report_errors FILE [DIRECTORY]
//
// DIRECTORY is where ErrorList.txt lies; the working directory without it. In this example's list,
// group 1 holds the failures of a reading, numbered by the result code without its sign.
#include <bscan/bscan.h>

#include <cstdio>
#include <string>

namespace {

constexpr int kReadingGroup = 1;

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::fputs(
            "report_errors: no BSDL file given\n"
            "usage: report_errors FILE [DIRECTORY]\n",
            stderr);
        return 2;
    }
    std::string file = argv[1];
    BScanParser parser;
    int code = parser.Initialize(file.c_str(), argc > 2 ? argv[2] : nullptr);
    if (code == bscan::kOk) {
        code = parser.Read();
    }
    if (code == bscan::kOk) {
        std::printf("%s: no error\n", file.c_str());
        return 0;
    }
    ErrorHandler* errors = parser.GetErrorHandler();
    if (errors == nullptr) {
        // The reading did not come as far as the error list: no such file or directory.
        std::fprintf(stderr, "%s: %s (%d)\n", file.c_str(), bscan::Describe(code), code);
        return 1;
    }
    const int result =
        parser.ProcessException(kReadingGroup, static_cast<unsigned>(-code), file.data());
    for (int i = 0; i < errors->GetErrorCount(); ++i) {
        std::fprintf(stderr, "%s\n", errors->GetError(i));
    }
    std::fprintf(stderr, "result %d of the error list, code %d of the library\n", result, code);
    return 1;
}
