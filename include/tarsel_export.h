// Export macro of the tarsel shared library: every class and free function of the
// interface carries TARSEL_API; everything else stays hidden.
#pragma once

#if defined(_WIN32)
#  if defined(TARSEL_BUILDING_LIBRARY)
#    define TARSEL_API __declspec(dllexport)
#  else
#    define TARSEL_API __declspec(dllimport)
#  endif
#else
#  define TARSEL_API __attribute__((visibility("default")))
#endif
