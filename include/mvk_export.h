/* Export macro and C linkage of the public headers. */
#ifndef MVK_EXPORT_H
#define MVK_EXPORT_H

/* Everything in the library is hidden unless its declaration carries MVK_API. */
#ifndef MVK_API
#define MVK_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define MVK_BEGIN_DECLS extern "C" {
#define MVK_END_DECLS }
#else
#define MVK_BEGIN_DECLS
#define MVK_END_DECLS
#endif

#endif
