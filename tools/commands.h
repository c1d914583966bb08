// The commands of the program, each with its options. Each returns the exit status.
#pragma once

#include "output.h"

#include <string>
#include <vector>

namespace tool {

enum ExitStatus : int {
    kSuccess = 0,
    kProblem = 1,  ///< a file that cannot be read, a request that failed, or a difference
    kUsage = 2,    ///< wrong arguments; for diff every trouble
};

struct ShowOptions {
    std::string file;
    bool pins = false;
    bool cells = false;
    bool instructions = false;
    Format format = Format::kTable;
};
int Show(const ShowOptions& options);

struct DriveOptions {
    std::string file;
    std::vector<std::string> requests;
    Format format = Format::kTable;
};
int Drive(const DriveOptions& options);

struct ObserveOptions {
    std::string file;
    std::string capture;
    std::string capture_file;
    Format format = Format::kTable;
};
int Observe(const ObserveOptions& options);

struct CheckOptions {
    std::vector<std::string> files;
    int jobs = 0;  ///< 0 for one for each processor
    Format format = Format::kTable;
};
int Check(const CheckOptions& options);

struct DiffOptions {
    std::string left;
    std::string right;
    Format format = Format::kTable;
};
int Diff(const DiffOptions& options);

struct DrawOptions {
    std::string file;
    std::string output;
};
int Draw(const DrawOptions& options);

}  // namespace tool
