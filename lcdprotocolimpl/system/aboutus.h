// What the device says about itself.
#pragma once

#include <string>
#include <vector>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_AboutUsCustomModel {
    std::string name;
    std::string customName;
    AJSON(name, customName)
};

struct s_AboutCustomSwitch {
    int islcd = -1;
    int state = -1;
    AJSON(islcd, state)
};

struct s_AboutUsCustom {
    std::string label;
    std::string value;
    AJSON(label, value)
};

struct s_AboutUsPicture {
    int type = -1;
    std::string path;
    AJSON(type, path)
};

struct s_AboutUsDevice {
    int type = -1;
    std::string value;
    int order = -1;
    AJSON(type, value, order)
};

/// What is told in one language.
struct s_CustomAttribute {
    std::string language;
    int mode = -1;
    int type = -1;
    std::vector<s_AboutUsCustom> custom;
    std::vector<s_AboutUsPicture> picture;
    std::vector<s_AboutUsDevice> deviceCustom;
    AJSON(language, mode, type, custom, picture, deviceCustom)
};

struct s_AboutUsCompany {
    std::string name;
    std::string email;
    std::string phone;
    std::string address;
    std::vector<s_CustomAttribute> customAttribute;
    AJSON(name, email, phone, address, customAttribute)
};

struct s_AboutUs {
    int mode = -1;
    std::string identification;
    std::string softwareName;
    s_AboutUsCustomModel customModel;
    s_AboutCustomSwitch customSwitch;
    s_AboutUsCompany company;
    std::string logo;
    std::string bkg;
    std::string version;
    AJSON(mode, identification, softwareName, customModel, customSwitch, company, logo, bkg, version)
};

}  // namespace LCD::ProtocolImpl
