#include "tunebrook-service/media/MediaRoutes.h"

#include <memory>

#include <httplib.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include "tunebrook-service/ServiceContext.h"
#include "tunebrook-service/catalogue/Slug.h"
#include "tunebrook-service/core/Database.h"
#include "tunebrook-service/core/FileUtil.h"
#include "tunebrook-service/core/Statement.h"
#include "tunebrook-service/http/ErrorCodes.h"
#include "tunebrook-service/http/FaultActions.h"
#include "tunebrook-service/http/IdText.h"
#include "tunebrook-service/http/Reply.h"
#include "tunebrook-service/media/ByteRange.h"
#include "tunebrook-service/media/MediaGenerator.h"

namespace tb::service {

namespace {

constexpr size_t kChunk = 64 * 1024;

// An open file that closes when the last reader lets go of it. Only a file inside the data
// folder opens: a link put in a media file's or folder's place is not followed out of it.
struct OpenFile {
    OpenFile(const std::string& folder, const std::string& path)
        : fd(FileUtil::openInside(folder, path)) {}
    ~OpenFile() {
        if (fd >= 0) {
            ::close(fd);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    int fd;
};

bool knownMedia(ServiceContext& context, const std::string& name, const char* kind) {
    std::lock_guard lock(context.db.mutex());
    auto statement = context.db.prepare("SELECT 1 FROM media WHERE name = ? AND kind = ?");
    statement.with(name, kind);
    return statement.step();
}

void serveFile(const httplib::Request& request,
               httplib::Response& response,
               const ServiceContext& context,
               const std::string& path,
               const std::string& contentType) {
    auto file = std::make_shared<OpenFile>(context.dataDir, path);
    struct stat info {};
    if (file->fd < 0 || ::fstat(file->fd, &info) != 0) {
        Reply::error(response, 500, kServerError, "The file is missing");
        return;
    }
    auto total = static_cast<uint64_t>(info.st_size);
    ByteRange range = ByteRange::parse(request.get_header_value("Range"), total);
    response.set_header("Accept-Ranges", "bytes");
    if (request.has_header("Range") && range.kind == ByteRange::Kind::unsatisfiable) {
        response.status = 416;
        response.set_header("Content-Range", "bytes */" + std::to_string(total));
        return;
    }
    if (request.has_header("Range") && range.kind == ByteRange::Kind::partial) {
        response.status = 206;
        response.set_header("Content-Range", "bytes " + std::to_string(range.first) + "-" +
                                                 std::to_string(range.last) + "/" +
                                                 std::to_string(total));
    } else {
        response.status = 200;
        range.first = 0;
        range.last = total == 0 ? 0 : total - 1;
    }
    uint64_t length = total == 0 ? 0 : range.length();
    uint64_t first = range.first;
    response.set_content_provider(
        static_cast<size_t>(length), contentType,
        [file, first](size_t offset, size_t wanted, httplib::DataSink& sink) {
            char buffer[kChunk];
            size_t count = wanted < kChunk ? wanted : kChunk;
            ssize_t read = ::pread(file->fd, buffer, count, static_cast<off_t>(first + offset));
            if (read <= 0) {
                return false;  // the file shrank under us: end the answer short
            }
            return sink.write(buffer, static_cast<size_t>(read));
        });
}

void audio(const httplib::Request& request, httplib::Response& response, ServiceContext& context) {
    if (FaultActions::answerInstead(response)) {
        return;
    }
    double now = context.now();
    auto id = IdText::parse(request.matches[1]);
    auto check = id ? context.urls.check(*id, request.get_param_value("expires"),
                                         request.get_param_value("sig"), now)
                    : MediaUrlSigner::Check::forged;
    if (check != MediaUrlSigner::Check::ok) {
        Reply::error(response, 403, kForbidden,
                     check == MediaUrlSigner::Check::expired ? "This address has expired"
                                                             : "Invalid address");
        return;
    }
    auto song = context.music.byId(*id);
    if (!song || song->type != "song" || song->takenDown() || !Slug::valid(song->audio) ||
        !knownMedia(context, song->audio, "audio")) {
        Reply::error(response, 404, kNotFound, "No such song");
        return;
    }
    serveFile(request, response, context, MediaGenerator::audioPath(context.dataDir, song->audio),
              "audio/mpeg");
}

void image(const httplib::Request& request, httplib::Response& response, ServiceContext& context) {
    if (FaultActions::answerInstead(response)) {
        return;
    }
    std::string name = request.matches[1];
    // "?width=N" is accepted and ignored: every size gets the same picture.
    if (!Slug::valid(name) || !knownMedia(context, name, "image")) {
        Reply::error(response, 404, kNotFound, "No such image");
        return;
    }
    response.set_header("Cache-Control", "public, max-age=86400");
    serveFile(request, response, context, MediaGenerator::imagePath(context.dataDir, name),
              "image/jpeg");
}

}  // namespace

void MediaRoutes::install(httplib::Server& server, ServiceContext& context) {
    server.Get(R"(/media/audio/(\d{1,18})\.mp3)",
               [&context](const httplib::Request& request, httplib::Response& response) {
                   audio(request, response, context);
               });
    server.Get(R"(/media/images/([a-z0-9-]{1,40})\.jpg)",
               [&context](const httplib::Request& request, httplib::Response& response) {
                   image(request, response, context);
               });
}

}  // namespace tb::service
