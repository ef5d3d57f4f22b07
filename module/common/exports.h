// Everything in the module is hidden except what carries this mark.
#ifndef TARN_MODULE_COMMON_EXPORTS_H
#define TARN_MODULE_COMMON_EXPORTS_H

#define TARN_EXPORT extern "C" __attribute__((visibility("default")))
#define TARN_EXPORT_DATA __attribute__((visibility("default")))

#endif
