// What is to be measured is done before and after it.

int main()
{
    return 0;
}
