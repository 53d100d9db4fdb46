def empty(count)
  count.times { }
end

def bare(count)
  count.times { 1000.gcd(2000) }
end

def call(count)
  count.times { nothing(1000, 2000) }
end

def best(loop, count = 20_000)
  times = (1..50).map do
    start = now
    send(loop, count)
    now - start
  end
  times.min / count.to_f
end

def main
  report("empty", best(:empty))
  report("bare", best(:bare))
  report("call", best(:call))
end
