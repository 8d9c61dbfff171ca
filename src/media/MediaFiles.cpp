#include "media/MediaFiles.h"

#include <fstream>

#include "core/Machine.h"

namespace tvc {

namespace {
bool CanRead(const std::string& name) {
    return !name.empty() && std::ifstream(name, std::ios::binary).good();
}
} // namespace

void ReportFileError(Machine& m, const std::string& name) {
    m.host->MessageBox("File not found: " + name, kAppTitle, MsgKind::Critical);
}

void LoadCAS(Machine& m, const std::string& name) {
    if (!CanRead(name)) ReportFileError(m, name);
}
void SaveCAS(Machine& m, const std::string& name) {
    if (name.empty()) ReportFileError(m, name);
}
void LoadSnapShot(Machine& m, const std::string& name) {
    if (!CanRead(name)) ReportFileError(m, name);
}
void SaveSnapshot(Machine& m, const std::string& name) {
    if (name.empty()) ReportFileError(m, name);
}
void LoadCRT(Machine& m, const std::string& name) {
    if (!CanRead(name)) ReportFileError(m, name);
}

} // namespace tvc
