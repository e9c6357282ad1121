// The least that starts and ends: the floor of every start of a program.
int main() {
    return 0;
}
