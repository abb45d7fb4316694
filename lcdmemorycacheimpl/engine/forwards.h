// The operations that most interfaces declare, forwarded to the getter and the setter.
//
// A shell gets each forward whose operation its interface declares and its getter or setter offers under the
// usual name. Whatever else an interface declares, the component's class forwards itself.
#pragma once

#include <any>
#include <functional>
#include <memory>
#include <string>

namespace LCD::MemoryCacheImpl {

using Delivery = std::function<void(std::any)>;
using SetResult = std::function<void(bool)>;

/// The interface and what stands behind it.
template <class Interface, class Getter, class Setter>
class ShellParts : public Interface {
public:
    using InterfaceType = Interface;
    using GetterType = Getter;
    using SetterType = Setter;

protected:
    std::unique_ptr<Getter> getter = std::make_unique<Getter>();
    std::unique_ptr<Setter> setter = std::make_unique<Setter>();
};

/// Whether `Interface` declares an operation of this name and these arguments.
#define LCD_DECLARES(operation, ...) \
    requires { static_cast<void (Interface::*)(const std::string&, __VA_ARGS__)>(&Interface::operation); }

template <class Interface, class Getter>
concept Registers = LCD_DECLARES(registerRequestCallBack, typename Interface::RequestCBType, const Delivery&);

template <class Interface, class Getter>
concept Gets = LCD_DECLARES(asyncGetSubData, typename Interface::RequestCBType) &&
    requires(Getter& getter, typename Interface::RequestCBType type) {
    getter.notifyCacheChanged(std::string(), type);
};

template <class Interface, class Getter>
concept GetsToCallback = LCD_DECLARES(asyncGetSubData, typename Interface::RequestCBType, const Delivery&) &&
    requires(Getter& getter, typename Interface::RequestCBType type, const Delivery& callback) {
    getter.notifyCacheChangedWithLambda(std::string(), type, callback);
};

template <class Interface, class Getter>
concept GetsKeyToCallback = LCD_DECLARES(asyncGetSubData, typename Interface::RequestCBType, const Delivery&, int) &&
    requires(Getter& getter, typename Interface::RequestCBType type, const Delivery& callback, int key) {
    getter.notifyCacheChangedWithLambda(std::string(), type, callback, key);
};

template <class Interface, class Setter>
concept Sets = LCD_DECLARES(asyncSetSubData, typename Interface::RequestCBType, const std::any&, const SetResult&);

template <class Interface, class Setter>
concept SetsKey = LCD_DECLARES(asyncSetSubData, typename Interface::RequestCBType, int, const std::any&,
                               const SetResult&);

#undef LCD_DECLARES

template <class Base>
class RegisterForward : public Base {};
template <class Base>
requires Registers<typename Base::InterfaceType, typename Base::GetterType>
class RegisterForward<Base> : public Base {
public:
    void registerRequestCallBack(const std::string& name, typename Base::RequestCBType type,
                                 const Delivery& callback) override {
        this->getter->appendRequestCallBack(name, type, callback);
    }
};

template <class Base>
class GetForward : public Base {};
template <class Base>
requires Gets<typename Base::InterfaceType, typename Base::GetterType>
class GetForward<Base> : public Base {
public:
    using Base::asyncGetSubData;
    void asyncGetSubData(const std::string& name, typename Base::RequestCBType type) override {
        this->getter->notifyCacheChanged(name, type);
    }
};

template <class Base>
class GetToCallbackForward : public Base {};
template <class Base>
requires GetsToCallback<typename Base::InterfaceType, typename Base::GetterType>
class GetToCallbackForward<Base> : public Base {
public:
    using Base::asyncGetSubData;
    void asyncGetSubData(const std::string& name, typename Base::RequestCBType type,
                         const Delivery& callback) override {
        this->getter->notifyCacheChangedWithLambda(name, type, callback);
    }
};

template <class Base>
class GetKeyToCallbackForward : public Base {};
template <class Base>
requires GetsKeyToCallback<typename Base::InterfaceType, typename Base::GetterType>
class GetKeyToCallbackForward<Base> : public Base {
public:
    using Base::asyncGetSubData;
    void asyncGetSubData(const std::string& name, typename Base::RequestCBType type, const Delivery& callback,
                         int key) override {
        this->getter->notifyCacheChangedWithLambda(name, type, callback, key);
    }
};

template <class Base>
class SetForward : public Base {};
template <class Base>
requires Sets<typename Base::InterfaceType, typename Base::SetterType>
class SetForward<Base> : public Base {
public:
    using Base::asyncSetSubData;
    void asyncSetSubData(const std::string& name, typename Base::RequestCBType type, const std::any& data,
                         const SetResult& callback) override {
        this->setter->asyncSetSubData({name, type, {}, data, callback});
    }
};

template <class Base>
class SetKeyForward : public Base {};
template <class Base>
requires SetsKey<typename Base::InterfaceType, typename Base::SetterType>
class SetKeyForward<Base> : public Base {
public:
    using Base::asyncSetSubData;
    void asyncSetSubData(const std::string& name, typename Base::RequestCBType type, int key, const std::any& data,
                         const SetResult& callback) override {
        this->setter->asyncSetSubData({name, type, key, data, callback});
    }
};

template <class Interface, class Getter, class Setter>
using Forwards = SetKeyForward<SetForward<
    GetKeyToCallbackForward<GetToCallbackForward<GetForward<RegisterForward<ShellParts<Interface, Getter, Setter>>>>>>>;

}  // namespace LCD::MemoryCacheImpl
