#include "core/Machine.h"

namespace tvc {

void Machine::Fatal(std::string_view text, std::string_view title) {
    if (!FatalStop) FatalText = std::string(text);
    FatalStop = true;
    run.RunFlag = 0;
    host->Fatal(text, title);
}

} // namespace tvc
