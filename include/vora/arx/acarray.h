// AcArray: the growable array of the ObjectARX API.
//
// The member layout is the SDK's (element pointer, then the physical length,
// the logical length and the grow length as 32-bit ints), so an array passed
// by address crosses a C boundary unchanged. Growth follows the SDK as well:
// a full array grows by at least the grow length, doubling while the buffer
// is under a threshold and by threshold-sized steps beyond it. The SDKs use
// 64 KiB up to 2021 and 1 MiB since; we take 1 MiB, which keeps arrays of
// 10^6 points from being copied a few hundred times while they fill.
#ifndef VORA_ARX_ACARRAY_H
#define VORA_ARX_ACARRAY_H

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

#include "vora/arx/gevec3d.h"

template <class T>
class AcArray {
public:
  explicit AcArray(int initPhysicalLength = 0, int initGrowLength = 8)
      : mGrowLen(initGrowLength > 0 ? initGrowLength : 8) {
    if (initPhysicalLength > 0) {
      mpArray = new T[initPhysicalLength];
      mPhysicalLen = initPhysicalLength;
    }
  }
  AcArray(const AcArray& src) : mGrowLen(src.mGrowLen) {
    if (src.mLogicalLen > 0) {
      mpArray = new T[src.mLogicalLen];
      mPhysicalLen = src.mLogicalLen;
      copyElements(mpArray, src.mpArray, src.mLogicalLen);
      mLogicalLen = src.mLogicalLen;
    }
  }
  AcArray(AcArray&& src) noexcept
      : mpArray(src.mpArray), mPhysicalLen(src.mPhysicalLen), mLogicalLen(src.mLogicalLen), mGrowLen(src.mGrowLen) {
    src.mpArray = nullptr;
    src.mPhysicalLen = 0;
    src.mLogicalLen = 0;
  }
  ~AcArray() { delete[] mpArray; }

  AcArray& operator=(const AcArray& src) {
    if (this != &src) {
      if (mPhysicalLen < src.mLogicalLen) {
        delete[] mpArray;
        mpArray = new T[src.mLogicalLen];
        mPhysicalLen = src.mLogicalLen;
      }
      copyElements(mpArray, src.mpArray, src.mLogicalLen);
      mLogicalLen = src.mLogicalLen;
    }
    return *this;
  }
  AcArray& operator=(AcArray&& src) noexcept {
    if (this != &src) {
      delete[] mpArray;
      mpArray = src.mpArray;
      mPhysicalLen = src.mPhysicalLen;
      mLogicalLen = src.mLogicalLen;
      mGrowLen = src.mGrowLen;
      src.mpArray = nullptr;
      src.mPhysicalLen = 0;
      src.mLogicalLen = 0;
    }
    return *this;
  }
  bool operator==(const AcArray& other) const {
    if (mLogicalLen != other.mLogicalLen) return false;
    for (int i = 0; i < mLogicalLen; ++i)
      if (!(mpArray[i] == other.mpArray[i])) return false;
    return true;
  }

  // Element access; like the SDK, no bounds check.
  T& operator[](int i) { return mpArray[i]; }
  const T& operator[](int i) const { return mpArray[i]; }
  T& at(int i) { return mpArray[i]; }
  const T& at(int i) const { return mpArray[i]; }
  AcArray& setAt(int i, const T& value) { mpArray[i] = value; return *this; }
  T& first() { return mpArray[0]; }
  const T& first() const { return mpArray[0]; }
  T& last() { return mpArray[mLogicalLen - 1]; }
  const T& last() const { return mpArray[mLogicalLen - 1]; }

  // Appends value and returns its index.
  int append(const T& value) {
    if (mLogicalLen >= mPhysicalLen) {
      T copy(value);  // value may live in this array's buffer
      growTo(mLogicalLen + 1);
      mpArray[mLogicalLen] = std::move(copy);
    } else {
      mpArray[mLogicalLen] = value;
    }
    return mLogicalLen++;
  }
  AcArray& append(const AcArray& other) {
    const int n = other.mLogicalLen;
    if (n == 0) return *this;
    if (mLogicalLen + n > mPhysicalLen) {
      if (&other == this) {
        AcArray copy(other);
        return append(copy);
      }
      growTo(mLogicalLen + n);
    }
    copyElements(mpArray + mLogicalLen, other.mpArray, n);
    mLogicalLen += n;
    return *this;
  }
  // Inserts value before index i, 0 <= i <= length; any other index does nothing.
  AcArray& insertAt(int i, const T& value) {
    if (i < 0 || i > mLogicalLen) return *this;
    T copy(value);
    if (mLogicalLen >= mPhysicalLen) growTo(mLogicalLen + 1);
    for (int k = mLogicalLen; k > i; --k) mpArray[k] = std::move(mpArray[k - 1]);
    mpArray[i] = std::move(copy);
    ++mLogicalLen;
    return *this;
  }
  // Removes the element at i; an index out of range does nothing.
  AcArray& removeAt(int i) {
    if (i < 0 || i >= mLogicalLen) return *this;
    for (int k = i; k + 1 < mLogicalLen; ++k) mpArray[k] = std::move(mpArray[k + 1]);
    --mLogicalLen;
    return *this;
  }
  // Removes the elements from start to end, both included.
  AcArray& removeSubArray(int start, int end) {
    if (start < 0 || end >= mLogicalLen || start > end) return *this;
    const int n = end - start + 1;
    for (int k = start; k + n < mLogicalLen; ++k) mpArray[k] = std::move(mpArray[k + n]);
    mLogicalLen -= n;
    return *this;
  }
  AcArray& removeFirst() { return removeAt(0); }
  AcArray& removeLast() {
    if (mLogicalLen > 0) --mLogicalLen;
    return *this;
  }
  AcArray& removeAll() { return setLogicalLength(0); }
  bool remove(const T& value, int start = 0) {
    const int i = findFrom(value, start);
    if (i < 0) return false;
    removeAt(i);
    return true;
  }

  bool contains(const T& value, int start = 0) const { return findFrom(value, start) >= 0; }
  bool find(const T& value, int& foundAt, int start = 0) const {
    const int i = findFrom(value, start);
    if (i < 0) return false;
    foundAt = i;
    return true;
  }
  int find(const T& value) const { return findFrom(value, 0); }
  int findFrom(const T& value, int start) const {
    for (int i = std::max(start, 0); i < mLogicalLen; ++i)
      if (mpArray[i] == value) return i;
    return -1;
  }

  int length() const { return mLogicalLen; }
  int logicalLength() const { return mLogicalLen; }
  int physicalLength() const { return mPhysicalLen; }
  int growLength() const { return mGrowLen; }
  bool isEmpty() const { return mLogicalLen == 0; }
  AcArray& setGrowLength(int n) {
    if (n > 0) mGrowLen = n;
    return *this;
  }

  // Grows with default-constructed cells or truncates; a negative length is 0.
  AcArray& setLogicalLength(int n) {
    if (n < 0) n = 0;
    if (n > mPhysicalLen) growTo(n);
    mLogicalLen = n;
    return *this;
  }
  AcArray& setLogicalLength(int n, const T& fill) {
    const int old = mLogicalLen;
    T copy(fill);
    setLogicalLength(n);
    for (int i = old; i < mLogicalLen; ++i) mpArray[i] = copy;
    return *this;
  }
  // Reallocates to exactly n cells; 0 frees the buffer.
  AcArray& setPhysicalLength(int n) {
    if (n < 0) n = 0;
    if (n == mPhysicalLen) return *this;
    T* fresh = n > 0 ? new T[n] : nullptr;
    const int keep = std::min(mLogicalLen, n);
    moveElements(fresh, mpArray, keep);
    delete[] mpArray;
    mpArray = fresh;
    mPhysicalLen = n;
    mLogicalLen = keep;
    return *this;
  }

  AcArray& reverse() {
    std::reverse(mpArray, mpArray + mLogicalLen);
    return *this;
  }
  AcArray& swap(int i1, int i2) {
    std::swap(mpArray[i1], mpArray[i2]);
    return *this;
  }

  T* asArrayPtr() { return mpArray; }
  const T* asArrayPtr() const { return mpArray; }
  T* begin() { return mpArray; }
  T* end() { return mpArray + mLogicalLen; }
  const T* begin() const { return mpArray; }
  const T* end() const { return mpArray + mLogicalLen; }

private:
  static constexpr long kGrowThresholdBytes = 0x100000;

  static void copyElements(T* dst, const T* src, int n) {
    if constexpr (std::is_trivially_copyable_v<T>) {
      if (n > 0) std::memcpy(static_cast<void*>(dst), static_cast<const void*>(src), sizeof(T) * static_cast<std::size_t>(n));
    } else {
      for (int i = 0; i < n; ++i) dst[i] = src[i];
    }
  }
  static void moveElements(T* dst, T* src, int n) {
    if constexpr (std::is_trivially_copyable_v<T>) {
      copyElements(dst, src, n);
    } else {
      for (int i = 0; i < n; ++i) dst[i] = std::move(src[i]);
    }
  }
  void growTo(int required) {
    const long bytes = static_cast<long>(mPhysicalLen) * static_cast<long>(sizeof(T));
    const int doubling = bytes < kGrowThresholdBytes ? mPhysicalLen : static_cast<int>(kGrowThresholdBytes / static_cast<long>(sizeof(T)));
    const int step = std::max(mGrowLen, doubling);
    setPhysicalLength(std::max(required, mPhysicalLen + step));
  }

  T* mpArray = nullptr;
  int mPhysicalLen = 0;
  int mLogicalLen = 0;
  int mGrowLen = 8;
};

using AcGePoint2dArray = AcArray<AcGePoint2d>;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeVector2dArray = AcArray<AcGeVector2d>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;
using AcGeDoubleArray = AcArray<double>;
using AcGeIntArray = AcArray<int>;

#endif
