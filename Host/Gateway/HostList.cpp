#include "Host/Gateway/HostList.hpp"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <sstream>

namespace Varnholt::Gateway::HostList {

namespace {

constexpr std::size_t c_MostHosts = 1'000; ///< the rest is passed over

using Url = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

Url Parsed(std::string const& p_Address)
{
    Url url(curl_url(), curl_url_cleanup);
    if (url && curl_url_set(url.get(), CURLUPART_URL, p_Address.c_str(), 0) != CURLUE_OK)
        url.reset();
    return url;
}

std::string Piece(CURLU* p_Url, CURLUPart p_Part, unsigned p_Flags = 0)
{
    char* text = nullptr;
    if (p_Url == nullptr || curl_url_get(p_Url, p_Part, &text, p_Flags) != CURLUE_OK)
        return {};
    std::string piece(text);
    curl_free(text);
    return piece;
}

/// An error page in the list's place is full of characters that no host's name has.
bool IsPlain(std::string const& p_Name)
{
    return p_Name.find_first_of("<>\"{}?#@\\|^`") == std::string::npos &&
           std::all_of(p_Name.begin(), p_Name.end(), [](char p_Character) {
               return static_cast<unsigned char>(p_Character) > 0x20 && p_Character != 0x7f;
           });
}

bool BeginsWith(std::string const& p_Text, char const* p_Beginning)
{
    return p_Text.rfind(p_Beginning, 0) == 0;
}

std::string AddressOf(std::string const& p_Name, bool p_Https)
{
    bool const hasScheme = BeginsWith(p_Name, "http://") || BeginsWith(p_Name, "https://");
    if (!hasScheme && p_Name.find("://") != std::string::npos)
        return {};
    std::string address = hasScheme ? p_Name : (p_Https ? "https://" : "http://") + p_Name;
    if (address.back() != '/')
        address += '/';
    return Canonical(address);
}

} // namespace

bool Read(std::string const& p_Text, bool p_Https, std::vector<std::string>& p_Addresses)
{
    p_Addresses.clear();
    std::istringstream names(p_Text);
    for (std::string name; p_Addresses.size() < c_MostHosts && names >> name;) {
        std::string const address = IsPlain(name) ? AddressOf(name, p_Https) : std::string();
        if (address.empty()) {
            p_Addresses.clear();
            return false;
        }
        if (std::find(p_Addresses.begin(), p_Addresses.end(), address) == p_Addresses.end())
            p_Addresses.push_back(address);
    }
    return true;
}

std::string Canonical(std::string const& p_Address)
{
    Url const url = Parsed(p_Address);
    std::string host = Piece(url.get(), CURLUPART_HOST);
    for (char& letter : host)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    if (host.empty() || curl_url_set(url.get(), CURLUPART_HOST, host.c_str(), 0) != CURLUE_OK)
        return {};
    return Piece(url.get(), CURLUPART_URL, CURLU_NO_DEFAULT_PORT);
}

std::string NameOf(std::string const& p_Address)
{
    Url const url = Parsed(p_Address);
    std::string const port = Piece(url.get(), CURLUPART_PORT);
    std::string const host = Piece(url.get(), CURLUPART_HOST);
    return port.empty() ? host : host + ':' + port;
}

} // namespace Varnholt::Gateway::HostList
