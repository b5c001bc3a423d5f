// A client of the shared library above.
int ProbeLevel();

int main() {
    return ProbeLevel();
}
