#pragma once

#include "common/map.h"
#include "common/shared_ptr.h"
#include "common/string.h"

// Between the bytes of a record's member and text.
class TypeProxy {
  public:
    virtual ~TypeProxy() = default;

    virtual Common::string Read(unsigned char const* memory, unsigned int size) const = 0;
    // False, with the memory untouched, when the text isn't a value of `size` bytes.
    virtual bool Write(unsigned char* memory, unsigned int size, Common::string const& text) const = 0;
};

// Proxies by type name. Made with the proxies of this file; a later one of the same name replaces.
class TypeProxyFactory {
  public:
    static void RegisterTypeProxy(Common::string const& type, Common::shared_ptr<TypeProxy> const& proxy);
    // Null when the type has none. Owned by the factory.
    static TypeProxy const* getTypeProxy(Common::string const& type);

  private:
    static Common::map<Common::string, Common::shared_ptr<TypeProxy>>& proxies();
};

template <class T, bool asHex>
class NumberArrayTypeProxy;

// Bytes as two-digit hexadecimal numbers with one blank between them.
template <>
class NumberArrayTypeProxy<unsigned char, true> : public TypeProxy {
  public:
    Common::string Read(unsigned char const* memory, unsigned int size) const override;
    // Takes as many two-digit numbers as the member has bytes, neither more nor fewer.
    bool Write(unsigned char* memory, unsigned int size, Common::string const& text) const override;
};

// Text members: neither terminated nor of their full length, filled up with blanks or zeros.
class CharTypeProxy : public TypeProxy {
  public:
    // Up to the first zero byte, blanks included.
    Common::string Read(unsigned char const* memory, unsigned int size) const override;
    // Takes at most `size` characters, and fills up with zeros.
    bool Write(unsigned char* memory, unsigned int size, Common::string const& text) const override;
};

// Bytes and arrays of bytes.
class HexTypeProxy : public NumberArrayTypeProxy<unsigned char, true> {};
