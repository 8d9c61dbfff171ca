// The file commands of the main window's dialog. The formats arrive with
// their media; until then each command only checks that its file can be
// opened, and reports the platform's error where it cannot.
#pragma once

#include <string>

namespace tvc {

class Machine;

void LoadCAS(Machine& m, const std::string& name);
void SaveCAS(Machine& m, const std::string& name);
void LoadSnapShot(Machine& m, const std::string& name);
void SaveSnapshot(Machine& m, const std::string& name);
void LoadCRT(Machine& m, const std::string& name);

// The run-time error of a file that cannot be opened; the command ends.
void ReportFileError(Machine& m, const std::string& name);

} // namespace tvc
