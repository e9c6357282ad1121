# The release channel's address is part of the program: nothing outside it can point an installation elsewhere.
set(KVN_DOWNLOAD_BASE_URL "https://updates.kelvane.example/downloads/" CACHE STRING
    "Address of the release channel: https, ending in /downloads/")

if(NOT KVN_DOWNLOAD_BASE_URL MATCHES "^https://[A-Za-z0-9.-]+(:[0-9]+)?(/[A-Za-z0-9._-]+)*/downloads/$")
    message(FATAL_ERROR
        "KVN_DOWNLOAD_BASE_URL is \"${KVN_DOWNLOAD_BASE_URL}\"; it must be an https address ending in /downloads/.")
endif()
