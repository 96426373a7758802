#ifndef TQ_EXPORT_H
#define TQ_EXPORT_H

/// Marks what belongs to the public interface. The library is built with hidden visibility, so
/// only what carries this mark is seen by the programs that link it.
#define TQ_API __attribute__((visibility("default")))

#endif
