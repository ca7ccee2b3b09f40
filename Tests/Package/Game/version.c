/* The least that a game in C can do with the installed kit: ask the library whether it is the one of the header. */

#include <flarebox.h>

int main(void) {
    return flarebox_version()[0] - '0' != FLAREBOX_VERSION_MAJOR;
}
