log before the mistake
cry
