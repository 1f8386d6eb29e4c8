// Builds against the installed package only: proves headers, libraries and config are complete.
#include <TQ_BACnet/Version.h>

#include <cstdio>
#include <cstring>

int main() {
    const char* v = TQ::BACnet::version();
    std::printf("installed TQ_BACnet %s\n", v);
    return std::strlen(v) > 0 ? 0 : 1;
}
