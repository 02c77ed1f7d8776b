#include <cstdio>

int main() {
    std::puts("tunebrook-service: not built yet");
    return 0;
}
