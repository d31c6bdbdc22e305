// InkAtelierBridge: the windowless helper process.
#include "bridge/bridge_entry.h"
#include "foundation/services/settings.h"
#include "platform/process_calls.h"
#include "platform/process_limits.h"

int main(int argc, char** argv) {
    using namespace brushwork;
    const BridgeSettings& settings = bridgeSettings();
    platform::applyProcessLimits({settings.addressSpace, settings.cpuSeconds, settings.confine});
    return runBridge(platform::processArguments(argc, argv));
}
