#include "command/type_proxy.h"

#include <cctype>
#include <cstring>

#include "common/conversion.h"

namespace {

constexpr unsigned int DIGITS_AND_BLANK = 3;

bool isHexDigit(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool isHexList(Common::string const& text, unsigned int count) {
    if (count == 0) return text.empty();
    if (text.size() != DIGITS_AND_BLANK * count - 1) return false;
    for (unsigned int i = 0; i < text.size(); ++i) {
        bool const isBlank = i % DIGITS_AND_BLANK == 2;
        if (isBlank ? text[i] != ' ' : !isHexDigit(text[i])) return false;
    }
    return true;
}

}  // namespace

Common::string NumberArrayTypeProxy<unsigned char, true>::Read(unsigned char const* memory,
                                                               unsigned int size) const {
    return Conversion::arrayToString(memory, size, " ");
}

bool NumberArrayTypeProxy<unsigned char, true>::Write(unsigned char* memory, unsigned int size,
                                                      Common::string const& text) const {
    if (!isHexList(text, size)) return false;
    for (unsigned int i = 0; i < size; ++i) {
        memory[i] = Conversion::hexStringToInt(text.substr(DIGITS_AND_BLANK * i, 2));
    }
    return true;
}

Common::string CharTypeProxy::Read(unsigned char const* memory, unsigned int size) const {
    auto const* const text = reinterpret_cast<char const*>(memory);
    return Common::string(text, static_cast<unsigned int>(strnlen(text, size)));
}

bool CharTypeProxy::Write(unsigned char* memory, unsigned int size, Common::string const& text) const {
    if (text.size() > size) return false;
    std::memset(memory, 0, size);
    std::memcpy(memory, text.c_str(), text.size());
    return true;
}

Common::map<Common::string, Common::shared_ptr<TypeProxy>>& TypeProxyFactory::proxies() {
    static Common::map<Common::string, Common::shared_ptr<TypeProxy>> s_proxies;
    if (s_proxies.empty()) {
        s_proxies.insert({"BYTE", Common::shared_ptr<TypeProxy>(new HexTypeProxy)});
        s_proxies.insert({"char", Common::shared_ptr<TypeProxy>(new CharTypeProxy)});
        s_proxies.insert({"RESERVED", Common::shared_ptr<TypeProxy>(new HexTypeProxy)});
    }
    return s_proxies;
}

void TypeProxyFactory::RegisterTypeProxy(Common::string const& type,
                                         Common::shared_ptr<TypeProxy> const& proxy) {
    proxies().insert({type, proxy});
}

TypeProxy const* TypeProxyFactory::getTypeProxy(Common::string const& type) {
    auto const found = proxies().find(type);
    return found != proxies().end() ? found->second.get() : nullptr;
}
