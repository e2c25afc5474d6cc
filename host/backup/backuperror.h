// A backup or a restore that did not come about, with one line that names the file.
#pragma once

#include <stdexcept>

namespace host {

class BackupError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace host
