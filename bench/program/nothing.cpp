// Starts and ends: the floor for the start of any program.
int main() {
    return 0;
}
