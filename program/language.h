#pragma once

#include <string>

namespace kestrel {

// Makes `language`, which is a value of LANGUAGE, the language of messages: in this process from
// its next setlocale(LC_ALL, "") on, and in processes that it starts. If the present locale has no
// catalogues (C; C.UTF-8 from glibc 2.39 on), another one is made in `directory`, which must exist
// and be readable as long as these processes run: so no locale of the system is needed. Changes the
// environment: call it before there are threads, and after setlocale(LC_ALL, "").
void use_language(const std::string& language, const std::string& directory);

}  // namespace kestrel
