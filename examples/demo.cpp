#include <cstdio>

int main() {
    std::puts("tarsel demo");
    return 0;
}
