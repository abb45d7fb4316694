// The envelope around every reply, and records that many topics share.
#pragma once

#include <string>
#include <vector>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

/// The reply of a request that returns a record. `code` 0 is success.
template <class T>
struct s_Response {
    int code = 0;
    std::string message;
    T data{};
    AJSON(code, message, data)
};

template <class T>
struct s_ResponseArray {
    int code = 0;
    std::string message;
    std::vector<T> data;
    AJSON(code, message, data)
};

/// The reply of a request that only changes something.
struct s_NullResponse {
    int code = 0;
    std::string message;
    AJSON(code, message)
};

/// Names something by its id, in lists.
struct s_IdObj {
    int id = -1;
    AJSON(id)
};

/// Names a template.
struct TemplateObj {
    int id = -1;
    int type = -1;
    int moduleType = -1;
    AJSON(id, type, moduleType)
};

}  // namespace LCD::ProtocolImpl
