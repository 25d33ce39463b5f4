/* The library's version. */
#ifndef PLX_VERSION_H
#define PLX_VERSION_H

/* PLX_VERSION_MAJOR, _MINOR and _PATCH are the version's numbers. */
#define PLX_VERSION_MAJOR 1
#define PLX_VERSION_MINOR 0
#define PLX_VERSION_PATCH 0

#define PLX_VERSION_QUOTE_(x) #x
#define PLX_VERSION_TEXT_(a, b, c) \
  PLX_VERSION_QUOTE_(a) "." PLX_VERSION_QUOTE_(b) "." PLX_VERSION_QUOTE_(c)

/* PLX_VERSION is the version as text, "1.0.0". */
#define PLX_VERSION PLX_VERSION_TEXT_(PLX_VERSION_MAJOR, PLX_VERSION_MINOR, PLX_VERSION_PATCH)

/* PLX_VERSION_NUMBER orders versions: 10000 * major + 100 * minor + patch. */
#define PLX_VERSION_NUMBER (10000 * PLX_VERSION_MAJOR + 100 * PLX_VERSION_MINOR + PLX_VERSION_PATCH)

#endif
