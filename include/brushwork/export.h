// Marks what a shared build of the libraries shows to a host. Everything else stays hidden.
#pragma once

#if defined(BRUSHWORK_STATIC)
#define BRUSHWORK_API
#elif defined(_WIN32)
#if defined(BRUSHWORK_BUILDING)
#define BRUSHWORK_API __declspec(dllexport)
#else
#define BRUSHWORK_API __declspec(dllimport)
#endif
#else
#define BRUSHWORK_API __attribute__((visibility("default")))
#endif
