#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "api/TBCatalogueBlocks.h"
#include "api/TBSessionGate.h"

namespace tb {

class API;
class ErrorReporter;
class ExternalSdks;
class JSON;
class MainQueue;
class SocialSignIn;
class TBCredentials;
class TBReachabilityManager;
class TBToastUtils;
class TBXAuthClientManager;
class UIHost;
struct TBFailureInfo;

// What a failed login hands the screen besides its message: "socialId", "socialToken",
// "socialSecret" when the service wants an email for a social account, "socialEmail" when
// the email given belongs to another account.
using TBLoginExtra = std::map<std::string, std::string>;
using TBLoginSuccessBlock = std::function<void()>;
// (status, message, extra). The status is 0 when no usable answer came.
using TBLoginFailureBlock =
    std::function<void(int status, const std::string& message, const TBLoginExtra& extra)>;
using TBLoginTimeoutBlock = std::function<void()>;

// Signs the listener in (email and password, or a Facebook, Google or Twitter token), keeps
// the token alive and repeats what failed on an expired token. The service has no refresh
// token: a refresh is a fresh login with the stored identity.
//
// A token change reaches all three request paths at once: the form client, the JSON client
// and the typed layer. All calls are on the main queue.
class TBUserManager final : public TBSessionGate {
  public:
    // The login screen's source after a lost session.
    static constexpr int kLostSessionLoginSource = 7;
    static constexpr double kRegisterTimeout = 10.0;

    struct Collaborators {
        TBCredentials& credentials;
        TBXAuthClientManager& clients;
        API& api;
        TBReachabilityManager& reachability;
        TBToastUtils& toasts;
        ErrorReporter& errorReporter;
        UIHost& ui;
        MainQueue& queue;
        ExternalSdks& sdks;
        SocialSignIn& social;
        // The advertising identifier when the listener allows advertising tracking, and
        // nothing otherwise.
        std::function<std::optional<std::string>()> advertisingIdentifier;
        // The device's identifier for this vendor; may be empty where the platform has none.
        std::string UDID;
    };

    explicit TBUserManager(Collaborators collaborators);
    ~TBUserManager() override;
    TBUserManager(const TBUserManager&) = delete;
    TBUserManager& operator=(const TBUserManager&) = delete;

    static TBUserManager& sharedInstance();

    const std::string& UDID() const { return UDID_; }
    bool refreshingToken() const { return refreshingToken_; }
    bool refreshTokenFailureAlertShown() const { return refreshTokenFailureAlertShown_; }

    // ---- Logins ----------------------------------------------------------------------
    // `refreshToken` says that this login renews the token of a listener already signed in
    // (a request waiting for it is then repeated). Empty credentials never reach the
    // service: the failure block runs with status 0.
    void loginWithEmail(const std::string& email,
                        const std::string& password,
                        bool refreshToken,
                        TBLoginSuccessBlock successBlock,
                        TBLoginFailureBlock failureBlock,
                        TBLoginTimeoutBlock timeoutBlock);
    void loginWithFacebookId(const std::string& facebookId,
                             const std::string& facebookToken,
                             const std::optional<std::string>& socialEmail,
                             bool refreshToken,
                             TBLoginSuccessBlock successBlock,
                             TBLoginFailureBlock failureBlock,
                             TBLoginTimeoutBlock timeoutBlock);
    void loginWithGoogleIdToken(const std::string& googleIdToken,
                                const std::optional<std::string>& socialEmail,
                                bool refreshToken,
                                TBLoginSuccessBlock successBlock,
                                TBLoginFailureBlock failureBlock,
                                TBLoginTimeoutBlock timeoutBlock);
    void loginWithTwitterToken(const std::string& twitterToken,
                               const std::string& twitterSecret,
                               const std::optional<std::string>& socialEmail,
                               bool refreshToken,
                               TBLoginSuccessBlock successBlock,
                               TBLoginFailureBlock failureBlock,
                               TBLoginTimeoutBlock timeoutBlock);
    // The step all logins share: the device's fields are added, then "access_token" is
    // asked with 30 seconds to answer. `parameters` must name an identity.
    void loginWithParameters(const nlohmann::json& parameters,
                             bool refreshToken,
                             TBLoginSuccessBlock successBlock,
                             TBLoginFailureBlock failureBlock,
                             TBLoginTimeoutBlock timeoutBlock);

    // Creates an account, then signs it in as a login does. 10 seconds to answer; the field
    // errors of a refusal are joined into the message.
    void registerUser(const std::string& email,
                      const std::string& artistName,
                      const std::string& password,
                      TBLoginSuccessBlock successBlock,
                      TBLoginFailureBlock failureBlock,
                      TBLoginTimeoutBlock timeoutBlock);

    // Whether the email or slug is taken.
    void checkExistenceOfEmail(const std::string& email,
                               const std::string& slug,
                               std::function<void(bool taken)> successBlock,
                               TBFailureBlock failureBlock);

    // The listener's record: fills the sets and highlights of the credentials, updates the
    // keychain fields and the saved artist.
    void getUserData(TBJSONSuccess successBlock, TBFailureBlock failureBlock);

    // ---- Session ---------------------------------------------------------------------
    // Signs in again with the stored identity (social tokens renewed first).
    void checkAutoLoginWithSuccessBlock(TBLoginSuccessBlock successBlock,
                                        std::function<void()> offlineBlock,
                                        TBLoginTimeoutBlock timeoutBlock,
                                        TBLoginFailureBlock failureBlock);
    // At start: renews the social library's own token where it needs it; never calls the
    // service.
    void refreshSocialTokensWithSuccessBlock(TBLoginSuccessBlock successBlock,
                                             std::function<void()> offlineBlock,
                                             TBLoginFailureBlock failureBlock);
    // A fresh token by a new login. While one is under way, a second call fails at once.
    // A refusal with a 4xx status signs the listener out and brings the login screen a
    // second later; any other failure keeps the listener and shows a popup once per process.
    void refreshTokenWithSuccess(std::function<void()> success, std::function<void()> failureBlock);
    void showRefreshTokenFailurePopup();

    // ---- Signed requests ---------------------------------------------------------------
    // A form POST on the signed client. A 401 while signed in refreshes the token and sends
    // the request again (every repeat may refresh again); a time-out runs only `timeout`
    // when given, else shows the offline toast and fails.
    void postToService(const std::string& url,
                       const nlohmann::json& paramaters,
                       TBJSONSuccess success,
                       TBFailureBlock failure,
                       std::function<void()> timeout);
    // A request of any method on the signed client. On 401 it waits in the one pending slot
    // (a later 401 takes the slot) and is repeated when the refresh login succeeds. A 204
    // hands over the response text.
    void requestToAuthenticatedAPI(const std::string& url,
                                   const std::string& method,
                                   TBJSONSuccess success,
                                   TBFailureBlock failure);
    void requestToAuthenticatedAPI(const std::string& url,
                                   const std::string& method,
                                   const nlohmann::json& parameters,
                                   TBJSONSuccess success,
                                   TBFailureBlock failure);

    // ---- TBSessionGate -----------------------------------------------------------------
    bool loggedIn() override;
    std::optional<std::string> userSlug() override;
    std::vector<ItemPtr> highlights() override;
    void refreshToken(std::function<void()> success, std::function<void()> failure) override;

  private:
    // The one request waiting for a fresh token.
    struct Pending {
        std::string url;
        std::string method;
        TBJSONSuccess success;
        TBFailureBlock failure;
    };

    // A login that ends before any answer: status 0, no message.
    static void failWithoutAnswer(const TBLoginFailureBlock& failureBlock);

    void addDeviceFields(nlohmann::json& parameters) const;
    void loginSucceeded(const nlohmann::json& parameters,
                        const nlohmann::json& responseObject,
                        bool refreshToken,
                        const TBLoginSuccessBlock& successBlock,
                        const TBLoginFailureBlock& failureBlock);
    void loginFailed(const nlohmann::json& parameters,
                     const nlohmann::json& responseObject,
                     int status,
                     const TBLoginFailureBlock& failureBlock) const;
    void reportEmptyCredentials(const std::string& text,
                                std::int64_t code,
                                const nlohmann::json& parameters) const;
    void loginWithFacebook(const TBLoginSuccessBlock& successBlock,
                           const TBLoginTimeoutBlock& timeoutBlock,
                           const TBLoginFailureBlock& failureBlock);
    void loginWithGoogle(const TBLoginSuccessBlock& successBlock,
                         const TBLoginTimeoutBlock& timeoutBlock,
                         const TBLoginFailureBlock& failureBlock);
    void refreshFailed(int status, const std::string& message);
    void sendAuthenticated(const std::string& url,
                           const std::string& method,
                           const nlohmann::json& parameters,
                           TBJSONSuccess success,
                           TBFailureBlock failure);
    void readUserData(const JSON& response);

    TBCredentials& credentials_;
    TBXAuthClientManager& clients_;
    API& api_;
    TBReachabilityManager& reachability_;
    TBToastUtils& toasts_;
    ErrorReporter& errorReporter_;
    UIHost& ui_;
    MainQueue& queue_;
    ExternalSdks& sdks_;
    SocialSignIn& social_;
    std::function<std::optional<std::string>()> advertisingIdentifier_;
    std::string UDID_;

    std::optional<Pending> pending_;
    bool refreshingToken_ = false;
    bool refreshTokenFailureAlertShown_ = false;
    // Answers that arrive after the manager is gone find this expired and do nothing.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tb
