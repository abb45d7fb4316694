// The names of types, for a person.
#pragma once

#include <cxxabi.h>

#include <cstdlib>
#include <list>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace panel {

template <class T>
struct TypeText {
    static std::string get() {
        const std::unique_ptr<char, void (*)(void*)> full(
            abi::__cxa_demangle(typeid(T).name(), nullptr, nullptr, nullptr), std::free);
        const std::string name = full.get();
        return name.substr(name.rfind(':') + 1);  // npos + 1 is 0
    }
};

template <>
struct TypeText<std::string> {
    static std::string get() { return "std::string"; }
};

template <class T>
struct TypeText<std::vector<T>> {
    static std::string get() { return "std::vector<" + TypeText<T>::get() + ">"; }
};

template <class T>
struct TypeText<std::list<T>> {
    static std::string get() { return "std::list<" + TypeText<T>::get() + ">"; }
};

template <class A, class B>
struct TypeText<std::pair<A, B>> {
    static std::string get() { return "std::pair<" + TypeText<A>::get() + ", " + TypeText<B>::get() + ">"; }
};

/// "std::vector<s_LayerBrief>": without namespaces, but for the standard library's.
template <class T>
std::string typeText() {
    return TypeText<T>::get();
}

}  // namespace panel
