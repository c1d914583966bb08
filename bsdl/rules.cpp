#include "bsdl/checks.h"

namespace bscan::detail {

// The order counts: a rule that settles a value, such as the length of instructions, comes before
// those that compare with it.
void CheckFacts(Reading& reading) {
    Checks checks(reading);
    CheckEdition(checks);
    CheckPorts(checks);
    CheckPackages(checks);
    CheckPinMaps(checks);
    CheckTap(checks);
    CheckCompliance(checks);
    CheckInstructions(checks);
    CheckIdcodes(checks);
    const CellTable cells(checks.facts.cells);
    CheckCellNumbers(checks, cells);
    CheckRegisterAccess(checks);
    CheckCellFields(checks);
    CheckCellPorts(checks);
    CheckControlCells(checks, cells);
    CheckPairs(checks);
    checks.ports.Report();
}

}  // namespace bscan::detail
