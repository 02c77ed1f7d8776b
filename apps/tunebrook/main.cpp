#include <cstdio>

int main() {
    std::puts("tunebrook: not built yet");
    return 0;
}
