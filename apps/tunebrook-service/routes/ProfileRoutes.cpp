#include "tunebrook-service/routes/ProfileRoutes.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include <nlohmann/json.hpp>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/catalogue/Vocabulary.h"
#include "tunebrook-service/core/Crypto.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/FileUtil.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/http/ApiCall.h"
#include "tunebrook-service/http/ApiRouter.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/media/MediaGenerator.h"
#include "tunebrook-service/routes/UserRoutes.h"

namespace tb::service {

using nlohmann::json;

namespace {

constexpr size_t kMaxNameLength = 50;
constexpr size_t kMaxBioLength = 800;
constexpr size_t kMaxTextLength = 100;
constexpr size_t kMaxUrlLength = 200;
constexpr size_t kMaxPictureBytes = 2 * 1024 * 1024;

using Columns = std::vector<std::pair<std::string, std::string>>;

// A text field of the request and the account column it sets.
struct TextField {
    const char* field;
    const char* column;
    size_t maxLength;
};

constexpr TextField kTextFields[] = {
    {"name", "name", kMaxNameLength},
    {"label", "label", kMaxTextLength},
    {"hometown", "hometown", kMaxTextLength},
    {"url", "website", kMaxUrlLength},
    {"bio", "bio", kMaxBioLength},
    {"twitter", "twitter", kMaxTextLength},
    {"facebook", "facebook", kMaxTextLength},
    {"instagram", "instagram", kMaxTextLength},
    {"genre", "genre", kMaxTextLength},
    {"youtube", "youtube", kMaxTextLength},
};

struct PictureField {
    const char* field;
    const char* column;
};

constexpr PictureField kPictureFields[] = {{"image", "image"}, {"image_banner", "banner"}};

// Characters as a listener counts them: UTF-8 lead bytes.
size_t characters(const std::string& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

bool blank(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](unsigned char c) { return std::isspace(c) != 0; });
}

bool webAddress(const std::string& text) {
    return text.rfind("http://", 0) == 0 || text.rfind("https://", 0) == 0;
}

// Why a text field can't be taken, or "" when it can.
std::string textProblem(const TextField& field, const std::string& value) {
    const std::string name = field.field;
    if (name == "name" && blank(value)) {
        return "Please enter an artist name";
    }
    if (characters(value) > field.maxLength) {
        return "This can have at most " + std::to_string(field.maxLength) + " characters";
    }
    if (name == "url" && !value.empty() && !webAddress(value)) {
        return "Please enter a web address starting with http:// or https://";
    }
    if (name == "genre" && !value.empty() && !Vocabulary::isGenre(value)) {
        return "This genre doesn't exist";
    }
    return {};
}

// The picture's bytes from Base64 text, or the reason they can't be taken.
std::optional<std::string> pictureBytes(const std::string& text, std::string& problem) {
    auto bytes = Crypto::base64Decode(text);
    if (!bytes || bytes->size() < 3 || bytes->compare(0, 3, "\xFF\xD8\xFF") != 0) {
        problem = "The picture must be a JPEG image in Base64";
        return std::nullopt;
    }
    if (bytes->size() > kMaxPictureBytes) {
        problem = "The picture is too large";
        return std::nullopt;
    }
    return bytes;
}

// Stores a new picture of the account and gives its media name, "" when it couldn't be
// written.
std::string storePicture(ServiceContext& context, int64_t accountId, const std::string& bytes) {
    std::string suffix = Crypto::randomAlphanumeric(10);
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string name = "u" + std::to_string(accountId) + "-" + suffix;
    if (!FileUtil::writeAtomically(MediaGenerator::imagePath(context.dataDir, name), bytes, 0644)) {
        return {};
    }
    std::lock_guard lock(context.db.mutex());
    context.db.prepare("INSERT OR REPLACE INTO media(name, kind, duration) VALUES(?, 'image', 0)")
        .with(name)
        .run();
    return name;
}

void editProfile(ApiCall& call, ServiceContext& context) {
    int64_t me = *call.accountId;
    json errors = json::object();
    json fields = json::array();
    Columns columns;
    for (const TextField& field : kTextFields) {
        auto value = call.param(field.field);
        if (!value) {
            continue;
        }
        fields.push_back(field.field);
        std::string problem = textProblem(field, *value);
        if (!problem.empty()) {
            errors[field.field] = {problem};
        }
        columns.emplace_back(field.column, *value);
    }
    std::vector<std::pair<const PictureField*, std::string>> pictures;
    for (const PictureField& field : kPictureFields) {
        auto value = call.param(field.field);
        if (!value) {
            continue;
        }
        fields.push_back(field.field);
        std::string problem;
        if (auto bytes = pictureBytes(*value, problem)) {
            pictures.emplace_back(&field, std::move(*bytes));
        } else {
            errors[field.field] = {problem};
        }
    }
    if (fields.empty()) {
        context.events.record("profile_edit", me, {{"fields", fields}, {"accepted", false}},
                              call.now);
        Reply::error(call.response, 400, kBadRequest, "Nothing to update");
        return;
    }
    if (!errors.empty()) {
        context.events.record("profile_edit", me,
                              {{"fields", fields}, {"accepted", false}, {"errors", errors}},
                              call.now);
        Reply::fieldErrors(call.response, 422, kBadRequest, errors, "The profile was not updated");
        return;
    }
    for (const auto& [field, bytes] : pictures) {
        std::string name = storePicture(context, me, bytes);
        if (name.empty()) {
            Reply::error(call.response, 500, kServerError, "The picture could not be stored");
            return;
        }
        columns.emplace_back(field->column, name);
    }
    context.accounts.updateProfile(me, columns);
    context.events.record("profile_edit", me, {{"fields", fields}, {"accepted", true}}, call.now);
    auto account = context.accounts.byId(me);
    if (!account) {
        Reply::error(call.response, 404, kNotFound, "This account doesn't exist");
        return;
    }
    Reply::json(call.response, {{"user", UserRoutes::record(context, *account)}});
}

}  // namespace

void ProfileRoutes::install(ApiRouter& router, ServiceContext& context) {
    router.add("PUT", "user/profile", Access::user,
               [&context](ApiCall& call) { editProfile(call, context); });
}

}  // namespace tb::service
