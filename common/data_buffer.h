#ifndef COMMON_DATA_BUFFER_H
#define COMMON_DATA_BUFFER_H

namespace Common {

// A buffer that can be made contiguous.
class DataBuffer {
  public:
    virtual ~DataBuffer() = default;
    virtual void Collect() {}
};

}  // namespace Common

#endif
