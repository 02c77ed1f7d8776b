#pragma once

#include <string>
#include <vector>

#include "model/ItemAttributes.h"
#include "offline/TBOperation.h"

namespace tb {

class HttpTransport;
class MainQueue;
template <typename T>
class Promise;

// Fetches the artwork of one item into the "artworks" folder: its small image (or the main
// one), its original image (or the main one) and its banner. Files already there are not
// fetched again. The fetches run side by side and one failure doesn't stop the others; the
// operation finishes when all are over, whatever became of them.
class TBDownloadImageOperation final : public TBOperation {
  public:
    // The artwork goes under `documents`.
    TBDownloadImageOperation(HttpTransport& http,
                             MainQueue& queue,
                             std::string documents,
                             ItemPtr song);

    const ItemPtr& song() const { return song_; }

    // The item's artwork URLs, in order, without repeats: at most three.
    static std::vector<std::string> artworkURLsOf(const Item& item);
    // True when the bytes are an image by their first bytes: JPEG, PNG, GIF or WebP.
    static bool looksLikeImage(const std::string& bytes);

  protected:
    void main() override;

  private:
    Promise<void> download(const std::string& url);

    HttpTransport& http_;
    MainQueue& queue_;
    std::string documents_;
    ItemPtr song_;
};

}  // namespace tb
