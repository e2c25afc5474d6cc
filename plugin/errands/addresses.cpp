// The only file that is built from the settings, so that two builds differ in nothing else.
#include "plugin/errands/addresses.h"

namespace ordomart {

namespace {

const std::string updatehost = ORDOMART_UPDATE_HOST;
const std::string updaterepository = ORDOMART_UPDATE_OWNER "/" ORDOMART_UPDATE_REPOSITORY;
const std::string reporthost = ORDOMART_REPORT_HOST;

}  // namespace

std::string latestreleaseaddress() {
    return updatehost.empty() ? "" : "https://" + updatehost + "/repos/" + updaterepository + "/releases/latest";
}

std::string tradereportaddress() {
    return reporthost.empty() ? "" : "http://" + reporthost + "/ordomart_formpostupload.php";
}

}  // namespace ordomart
