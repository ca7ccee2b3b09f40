/* The version that these headers belong to; flarebox_version() answers that of the library in use. For C and C++, and
 * read by the build. */
#ifndef FLAREBOX_VERSION_H
#define FLAREBOX_VERSION_H

#define FLAREBOX_VERSION_MAJOR 0
#define FLAREBOX_VERSION_MINOR 1
#define FLAREBOX_VERSION_PATCH 0

/* As one number, for comparisons: 0.1.0 is 100, 1.2.3 is 10203. */
#define FLAREBOX_VERSION_NUMBER (FLAREBOX_VERSION_MAJOR * 10000 + FLAREBOX_VERSION_MINOR * 100 + FLAREBOX_VERSION_PATCH)

#endif
