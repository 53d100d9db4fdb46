# Mode: step
# The event loop's own frames are passed over; what awaits stands below what is awaited.
import asyncio


async def inner(name):
    await asyncio.sleep(0)
    return name


async def task(name):
    return await inner(name)


async def numbers():
    yield 1


async def outer():
    await inner("first")
    await asyncio.gather(task("a"), task("b"))
    async for number in numbers():
        pass


def main():
    asyncio.run(outer())
